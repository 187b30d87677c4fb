#include "cgiFramework/SQLTransaction.h"

#include "cgiFramework/SQLSession.h"
#include "common/ThrowText.h"
#include "kernel/OSConsole.h"

namespace {

constexpr size_t kLongestLockName = 64;  // the server's limit

// For destructors: the connection may be what failed.
void TryTo(SQLSession& db, const SqlText& statement) {
    try {
        db.Execute(statement);
    } catch (const char* message) {
        ConsoleReport("SQLTransaction: %s\n", message);
    }
}

}  // namespace

SQLTransaction::SQLTransaction(SQLSession& db) : db_(db) {
    db_.Execute(SqlText("START TRANSACTION"));
}

SQLTransaction::~SQLTransaction() {
    if (open_) TryTo(db_, SqlText("ROLLBACK"));
}

void SQLTransaction::Commit() {
    db_.Execute(SqlText("COMMIT"));
    open_ = false;
}

SQLNamedLock::SQLNamedLock(SQLSession& db, const std::string& name)
    : db_(db), name_(name.substr(0, kLongestLockName)) {
    db_.Query(SqlText("SELECT GET_LOCK('%s', 10)", SqlQuoted(name_.c_str())));
    const bool held = db_.NextRow() && db_.IntColumn(0) == 1;
    db_.EndResult();
    if (!held) ThrowText("Somebody else is saving the same right now. Please try again.");
}

SQLNamedLock::~SQLNamedLock() {
    TryTo(db_, SqlText("DO RELEASE_LOCK('%s')", SqlQuoted(name_.c_str())));
}
