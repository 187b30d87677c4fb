// SQLSession.h: a connection to the database, and queries on it.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "common/SqlText.h"
#include "common/UStringX.h"

struct st_mysql;
struct st_mysql_res;

// Where the database is. `serverAddress` is a host, host:port or the absolute path of a Unix
// socket.
struct SQLAddress {
    const char* serverAddress;
    const char* user;
    const char* password;
    const char* db;
};

// A connection with at most one result at a time. Every failure throws the server's message, in a
// buffer that outlives the session. A second SQLSession made from a first shares its connection and
// must end before it.
class SQLSession {
  public:
    // Connects: character set utf8mb4, and an sql_mode under which UString::EscapeMySQL is enough.
    explicit SQLSession(const SQLAddress& address);
    // Another cursor on the same connection; that one's result must be stored or finished.
    explicit SQLSession(SQLSession* other);
    ~SQLSession();
    SQLSession(const SQLSession&) = delete;
    SQLSession& operator=(const SQLSession&) = delete;

    // Runs a statement and stores its whole result, if it has one.
    void Query(const SqlText& statement);
    // Runs a statement and leaves its rows on the server until NextRow asks for them.
    void Stream(const SqlText& statement);
    // Runs a statement that has no rows (or whose rows do not matter).
    void Execute(const SqlText& statement);
    // Moves to the next row; false after the last one. An error in mid stream throws.
    bool NextRow();
    // Frees the result; rows still on the server are read and dropped.
    void EndResult();

    // The present row. A null column reads as "", 0 and IsNull. Texts live until the next NextRow.
    const char* Column(int index) const;
    std::string_view View(int index) const;
    // All of them, one a column; a null column's view has no data.
    void ViewRow(std::vector<std::string_view>& row) const;
    int IntColumn(int index) const;
    bool IsNull(int index) const;

    int ColumnCount() const;
    const char* ColumnName(int index) const;
    // Rows of a stored result; of a streamed one those read so far.
    uint64_t RowCount() const;
    uint64_t LastInsertId() const;

    st_mysql* connection() const { return mysql_; }
    st_mysql_res* result() const { return result_; }
    char** row() const { return row_; }

  private:
    void Run(const SqlText& statement);
    [[noreturn]] void Fail() const;

    st_mysql* mysql_ = nullptr;
    st_mysql_res* result_ = nullptr;
    char** row_ = nullptr;
    unsigned long* lengths_ = nullptr;
    bool owner_ = false;
};
