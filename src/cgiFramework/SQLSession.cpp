#include "cgiFramework/SQLSession.h"

#include <mysql.h>
#include <openssl/ssl.h>

#include <cstdlib>
#include <string>

#include "cgiFramework/QueryTiming.h"
#include "common/Parse.h"
#include "common/ThrowText.h"

namespace {

// Text between quotes escaped by UString::EscapeMySQL is safe under this mode: backslashes escape,
// and double quotes delimit texts. Dates of zero are values in some of the tables.
constexpr char kSessionSettings[] =
    "SET sql_mode='STRICT_TRANS_TABLES,ERROR_FOR_DIVISION_BY_ZERO,NO_ENGINE_SUBSTITUTION'";

constexpr unsigned kDefaultPort = 3306;

struct Endpoint {
    std::string host;
    std::string socket;
    unsigned port = 0;
};

// What mysql_init would find out on its own at the cost of many a page: a port of our own spares
// the search for the service's name in files and libraries, and a light start of OpenSSL its
// configuration and error texts, which a request that speaks through a socket needs neither.
void StartClientLibrary() {
    mysql_port = kDefaultPort;
    OPENSSL_init_ssl(OPENSSL_INIT_NO_LOAD_CONFIG | OPENSSL_INIT_NO_LOAD_SSL_STRINGS |
                         OPENSSL_INIT_NO_LOAD_CRYPTO_STRINGS,
                     nullptr);
}

Endpoint ParseAddress(const char* address) {
    Endpoint at;
    if (address[0] == '/') {
        at.socket = address;
        return at;
    }
    at.host = address;
    const size_t colon = at.host.find(':');
    if (colon != std::string::npos) {
        int64_t port = 0;
        if (!ParseInt64(at.host.c_str() + colon + 1, port) || port < 1 || port > 65535)
            ThrowText("The setting serverAddress is not host:port: %s", address);
        at.port = static_cast<unsigned>(port);
        at.host.resize(colon);
    }
    return at;
}

}  // namespace

SQLSession::SQLSession(const SQLAddress& address) : owner_(true) {
    const Endpoint at = ParseAddress(address.serverAddress);
    StartClientLibrary();
    mysql_ = mysql_init(nullptr);
    if (mysql_ == nullptr) ThrowText("SQLSession: no memory for a connection");
    const unsigned connectSeconds = 5;
    mysql_optionsv(mysql_, MYSQL_OPT_CONNECT_TIMEOUT, &connectSeconds);
    mysql_optionsv(mysql_, MYSQL_SET_CHARSET_NAME, "utf8mb4");
    mysql_optionsv(mysql_, MYSQL_INIT_COMMAND, kSessionSettings);
    if (mysql_real_connect(mysql_, at.host.empty() ? nullptr : at.host.c_str(), address.user,
                           address.password, address.db, at.port,
                           at.socket.empty() ? nullptr : at.socket.c_str(), 0) == nullptr) {
        // The destructor does not run for a constructor that throws.
        const UString message(mysql_error(mysql_));
        mysql_close(mysql_);
        ThrowText("%s", message.c_str());
    }
}

SQLSession::SQLSession(SQLSession* other) : mysql_(other->mysql_) {}

SQLSession::~SQLSession() {
    EndResult();
    if (owner_) mysql_close(mysql_);
}

void SQLSession::Fail() const {
    ThrowText("%s", mysql_error(mysql_));
}

void SQLSession::Run(const SqlText& statement) {
    EndResult();
    if (RunQuery(mysql_, statement.c_str(), statement.length()) != 0) Fail();
}

void SQLSession::Query(const SqlText& statement) {
    Run(statement);
    result_ = mysql_store_result(mysql_);
    if (result_ == nullptr && mysql_errno(mysql_) != 0) Fail();
}

void SQLSession::Stream(const SqlText& statement) {
    Run(statement);
    result_ = mysql_use_result(mysql_);
    if (result_ == nullptr && mysql_errno(mysql_) != 0) Fail();
}

void SQLSession::Execute(const SqlText& statement) {
    Query(statement);
    EndResult();
}

bool SQLSession::NextRow() {
    if (result_ == nullptr) return false;
    row_ = mysql_fetch_row(result_);
    if (row_ == nullptr) {
        lengths_ = nullptr;
        if (mysql_errno(mysql_) != 0) Fail();
        return false;
    }
    lengths_ = mysql_fetch_lengths(result_);
    return true;
}

void SQLSession::EndResult() {
    if (result_ != nullptr) mysql_free_result(result_);
    result_ = nullptr;
    row_ = nullptr;
    lengths_ = nullptr;
}

const char* SQLSession::Column(int index) const {
    return IsNull(index) ? "" : row_[index];
}

std::string_view SQLSession::View(int index) const {
    return IsNull(index) ? std::string_view() : std::string_view(row_[index], lengths_[index]);
}

void SQLSession::ViewRow(std::vector<std::string_view>& row) const {
    row.resize(ColumnCount());
    for (size_t i = 0; i < row.size(); ++i)
        row[i] = row_[i] != nullptr ? std::string_view(row_[i], lengths_[i]) : std::string_view();
}

int SQLSession::IntColumn(int index) const {
    return static_cast<int>(strtol(Column(index), nullptr, 10));
}

bool SQLSession::IsNull(int index) const {
    return row_ == nullptr || index < 0 || index >= ColumnCount() || row_[index] == nullptr;
}

int SQLSession::ColumnCount() const {
    return result_ != nullptr ? static_cast<int>(mysql_num_fields(result_)) : 0;
}

const char* SQLSession::ColumnName(int index) const {
    if (result_ == nullptr || index < 0 || index >= ColumnCount()) return "";
    return mysql_fetch_field_direct(result_, static_cast<unsigned>(index))->name;
}

uint64_t SQLSession::RowCount() const {
    return result_ != nullptr ? mysql_num_rows(result_) : 0;
}

uint64_t SQLSession::LastInsertId() const {
    return mysql_insert_id(mysql_);
}
