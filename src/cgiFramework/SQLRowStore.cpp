#include "cgiFramework/SQLRowStore.h"

#include <optional>

#include "cgiFramework/SQLTransaction.h"
#include "common/Parse.h"

namespace {

constexpr char kReadSql[] = "SELECT %s FROM %s WHERE %s";
constexpr char kLockSql[] = "SELECT 1 FROM %s WHERE %s FOR UPDATE";
constexpr char kUpdateSql[] = "UPDATE %s SET %s WHERE %s";
constexpr char kInsertSql[] = "INSERT INTO %s SET %s";
constexpr char kRemoveSql[] = "DELETE FROM %s WHERE %s";
constexpr char kOthersSql[] = "SELECT %s FROM %s WHERE %s AND %s = '%s' AND %s <> '%s'";
constexpr char kAttributeSql[] = "SELECT %s FROM %s WHERE %s='%s' AND %s='%s'";
constexpr char kDropAttributeSql[] = "DELETE FROM %s WHERE %s='%s' AND %s='%s'";
constexpr char kAddAttributeSql[] = "INSERT INTO %s (%s, %s, %s) VALUES ('%s','%s','%s')";
constexpr size_t kMostIdDigits = 18;

// Identifiers come from definitions, never from the browser.
SqlFragment Own(const std::string& text) {
    return SqlFragment(text);
}

SqlQuoted Quoted(const std::string& text) {
    return SqlQuoted(text.c_str());
}

bool IsColumn(const SQLField& field) {
    return !field.attribute && !field.column.empty();
}

bool IsWritten(const SQLField& field) {
    return field.type != SQLFieldType::kReadOnly;
}

const std::string& ValueOf(const SQLField& field, const SQLValues& values) {
    static const std::string none;
    const auto at = values.find(field.name);
    return at != values.end() ? at->second : none;
}

}  // namespace

std::string SQLRowStore::ScopeCondition() const {
    std::string condition;
    for (const auto& [column, value] : definition_.scope) {
        if (!condition.empty()) condition += " AND ";
        condition += SqlText("%s='%s'", Own(column), Quoted(value)).c_str();
    }
    return condition;
}

std::string SQLRowStore::RowCondition(const std::string& id) const {
    return ScopeCondition() + SqlText(" AND %s='%s'", Own(definition_.key), Quoted(id)).c_str();
}

std::string SQLRowStore::LockName() const {
    std::string name = "lumora." + definition_.table;
    for (const auto& [column, value] : definition_.scope)
        name += "." + value;
    return name;
}

bool SQLRowStore::Read(const std::string& id, SQLValues& values) {
    if (!IsDigits(id.c_str(), 1, kMostIdDigits)) return false;
    std::string columns = definition_.key;
    for (const SQLField& field : definition_.fields)
        if (IsColumn(field)) columns += ", " + field.column;
    db_.Query(SqlText(kReadSql, Own(columns), Own(definition_.table), Own(RowCondition(id))));
    if (!db_.NextRow()) return false;
    int index = 0;
    for (const SQLField& field : definition_.fields)
        if (IsColumn(field)) values[field.name] = db_.Column(++index);
    ReadAttributes(id, values);
    return true;
}

void SQLRowStore::ReadAttributes(const std::string& id, SQLValues& values) {
    const SQLAttributeTable& table = definition_.attributes;
    for (const SQLField& field : definition_.fields) {
        if (!field.attribute) continue;
        db_.Query(SqlText(kAttributeSql, Own(table.value), Own(table.table), Own(table.owner),
                          Quoted(id), Own(table.name), Quoted(field.column)));
        values[field.name] = db_.NextRow() ? db_.Column(0) : "";
    }
    db_.EndResult();
}

void SQLRowStore::WriteAttributes(const std::string& id, const SQLValues& values) {
    const SQLAttributeTable& table = definition_.attributes;
    for (const SQLField& field : definition_.fields) {
        if (!field.attribute || !IsWritten(field)) continue;
        db_.Execute(SqlText(kDropAttributeSql, Own(table.table), Own(table.owner), Quoted(id),
                            Own(table.name), Quoted(field.column)));
        const std::string& value = ValueOf(field, values);
        if (!value.empty())
            db_.Execute(SqlText(kAddAttributeSql, Own(table.table), Own(table.owner),
                                Own(table.name), Own(table.value), Quoted(id), Quoted(field.column),
                                Quoted(value)));
    }
}

std::string SQLRowStore::Assignments(const SQLValues& values, const char* separator) const {
    std::string text;
    for (const SQLField& field : definition_.fields) {
        if (!IsColumn(field) || !IsWritten(field)) continue;
        if (!text.empty()) text += separator;
        text += SqlText("%s='%s'", Own(field.column), Quoted(ValueOf(field, values))).c_str();
    }
    return text;
}

bool SQLRowStore::IsTaken(const std::string& id, const SQLValues& values, bool& same) {
    for (const SQLField& field : definition_.fields) {
        if (field.name != definition_.unique) continue;
        db_.Query(SqlText(kOthersSql, Own(Assignments(values, " AND ")), Own(definition_.table),
                          Own(ScopeCondition()), Own(field.column), Quoted(ValueOf(field, values)),
                          Own(definition_.key), Quoted(id)));
        if (!db_.NextRow()) return false;
        same = db_.IntColumn(0) == 1;
        return true;
    }
    return false;
}

SQLRowStore::Result SQLRowStore::Update(const std::string& id, const SQLValues& values) {
    std::optional<SQLNamedLock> lock;
    if (!definition_.unique.empty()) lock.emplace(db_, LockName());
    SQLTransaction transaction(db_);
    // Two requests for the same row come one after the other, attributes included.
    db_.Query(SqlText(kLockSql, Own(definition_.table), Own(RowCondition(id))));
    if (!db_.NextRow()) return Result::kMissing;
    bool same = false;
    if (IsTaken(id, values, same)) return Result::kDuplicate;
    const std::string columns = Assignments(values, ", ");
    if (!columns.empty())
        db_.Execute(
            SqlText(kUpdateSql, Own(definition_.table), Own(columns), Own(RowCondition(id))));
    WriteAttributes(id, values);
    transaction.Commit();
    return Result::kDone;
}

SQLRowStore::Result SQLRowStore::Insert(const SQLValues& values) {
    const SQLNamedLock lock(db_, LockName());
    SQLTransaction transaction(db_);
    bool same = false;
    if (IsTaken("0", values, same)) return same ? Result::kDone : Result::kDuplicate;
    std::string columns = Assignments(values, ", ");
    for (const auto& [column, value] : definition_.scope)
        columns += SqlText(", %s='%s'", Own(column), Quoted(value)).c_str();
    db_.Execute(SqlText(kInsertSql, Own(definition_.table), Own(columns)));
    WriteAttributes(std::to_string(db_.LastInsertId()), values);
    transaction.Commit();
    return Result::kDone;
}

SQLRowStore::Result SQLRowStore::Remove(const std::string& id) {
    SQLTransaction transaction(db_);
    db_.Query(SqlText(kLockSql, Own(definition_.table), Own(RowCondition(id))));
    if (!db_.NextRow()) return Result::kMissing;
    db_.Execute(SqlText(kRemoveSql, Own(definition_.table), Own(RowCondition(id))));
    if (!definition_.attributes.table.empty())
        db_.Execute(SqlText("DELETE FROM %s WHERE %s='%s'", Own(definition_.attributes.table),
                            Own(definition_.attributes.owner), Quoted(id)));
    transaction.Commit();
    return Result::kDone;
}
