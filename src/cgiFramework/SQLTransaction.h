// SQLTransaction.h: statements that take effect together or not at all.
#pragma once

#include <string>

class SQLSession;

// Begins with the object; what was not committed when it ends is undone.
class SQLTransaction {
  public:
    // Throws the server's message, as Commit does.
    explicit SQLTransaction(SQLSession& db);
    ~SQLTransaction();
    SQLTransaction(const SQLTransaction&) = delete;
    SQLTransaction& operator=(const SQLTransaction&) = delete;
    void Commit();

  private:
    SQLSession& db_;
    bool open_ = true;
};

// A name that only one request of the whole portal holds at a time, for what a lock on a row cannot
// keep apart, such as two rows that are not there yet.
class SQLNamedLock {
  public:
    // Waits for at most 10 seconds and throws a text after that. The name is cut at 64 characters.
    SQLNamedLock(SQLSession& db, const std::string& name);
    ~SQLNamedLock();
    SQLNamedLock(const SQLNamedLock&) = delete;
    SQLNamedLock& operator=(const SQLNamedLock&) = delete;

  private:
    SQLSession& db_;
    std::string name_;
};
