#include "portal/management/PermissionRows.h"

#include <cstring>

#include "portal/context/ManagerContext.h"

namespace {

constexpr UserRight kRights[] = {
    {1, "Search telephone users", false},
    {2, "Listen to recordings", false},
    {4, "Manage the portal's users", false},
    {32, "Configure the contact centre", false},
    {40, "See recordings in searches", false},
    {8, "Restricted: may not change settings", true},
    {16, "No call reports", true},
};

constexpr PermissionFlag kFlags[] = {
    {"logging", "Call log", &PermissionFlags::logging},
    {"recording", "Recordings", &PermissionFlags::recording},
    {"queue", "As queue", &PermissionFlags::queue},
    {"agent", "As agent", &PermissionFlags::agent},
};

constexpr const char* kTypes[] = {"User", "Department", "Inbox", "Teammate"};

// Number and name of the entities of each type, in the same order.
constexpr const char* kEntities[] = {
    "SELECT telephoneNumber AS number, cn AS name, customerid FROM LDAPUsers",
    "SELECT telephoneNumber AS number, cn AS name, customerid FROM LDAPDepartments",
    "SELECT id AS number, name, customerid FROM FrontInbox",
    "SELECT id AS number, CONCAT(firstName, ' ', lastName) AS name, customerid FROM FrontTeammate",
};

constexpr char kLockSql[] = "SELECT 1 FROM CustomerContact WHERE id='%i' FOR UPDATE";
constexpr char kRightsSql[] =
    "SELECT rightid FROM CustomerUserRight WHERE customerid='%i' AND guid='%i'";
constexpr char kGrantSql[] =
    "INSERT IGNORE INTO CustomerUserRight (customerid, guid, rightid) VALUES ('%i','%i','%i')";
constexpr char kWithdrawSql[] =
    "DELETE FROM CustomerUserRight WHERE customerid='%i' AND guid='%i' AND rightid='%i'";
constexpr char kNameOfSql[] =
    " WHEN '%s' THEN (SELECT MAX(name) FROM (%s) AS e WHERE e.number=p.entityNumber AND "
    "e.customerid IN ('%s'))";
constexpr char kRowsSql[] =
    "SELECT type, entityNumber, CASE type%s ELSE '' END AS entity, logging, recording, queue, agent "
    "FROM CallLogPermissions AS p WHERE contactid='%i' AND customerid='%i' "
    "ORDER BY type, entity, entityNumber";
enum { kType, kNumber, kName, kFirstFlag };
constexpr char kRowCondition[] =
    "contactid='%i' AND customerid='%i' AND type='%s' AND entityNumber='%s'";
constexpr char kFindSql[] =
    "SELECT DISTINCT number, name FROM (%s) AS e WHERE customerid IN ('%s') AND number<>'' AND "
    "(number='%s' OR name='%s') LIMIT 2";

size_t TypeIndex(const std::string& type) {
    size_t i = 0;
    while (i < std::size(kTypes) && type != kTypes[i])
        ++i;
    return i;
}

std::string Assignments(const PermissionFlags& flags) {
    std::string text;
    for (const PermissionFlag& flag : kFlags) {
        if (!text.empty()) text += ", ";
        text.append(flag.column).append(flags.*flag.flag ? "=1" : "=0");
    }
    return text;
}

}  // namespace

std::span<const UserRight> UserRights() {
    return kRights;
}

std::span<const PermissionFlag> PermissionFlagList() {
    return kFlags;
}

std::span<const char* const> PermissionTypes() {
    return kTypes;
}

bool IsPermissionType(const std::string& type) {
    return TypeIndex(type) < std::size(kTypes);
}

void PermissionRows::Lock() {
    db_.Execute(SqlText(kLockSql, userId_));
}

std::set<int> PermissionRows::Rights() {
    std::set<int> rights;
    db_.Query(SqlText(kRightsSql, ctx_.customerId, userId_));
    while (db_.NextRow())
        rights.insert(db_.IntColumn(0));
    return rights;
}

void PermissionRows::SetRight(int right, bool held) {
    if (held)
        db_.Execute(SqlText(kGrantSql, ctx_.customerId, userId_, right));
    else
        db_.Execute(SqlText(kWithdrawSql, ctx_.customerId, userId_, right));
}

std::vector<PermissionRow> PermissionRows::Rows() {
    // The context joins the group's ids itself: numbers, made to stand inside IN('...').
    const SqlFragment group(ctx_.GetCustomerSearchGroup());
    std::string names;
    for (size_t i = 0; i < std::size(kTypes); ++i)
        names +=
            SqlText(kNameOfSql, SqlQuoted(kTypes[i]), SqlFragment(kEntities[i]), group).c_str();
    db_.Query(SqlText(kRowsSql, SqlFragment(names), userId_, ctx_.customerId));
    std::vector<PermissionRow> rows;
    while (db_.NextRow()) {
        PermissionRow& row = rows.emplace_back();
        row.type = db_.Column(kType);
        row.number = db_.Column(kNumber);
        row.name = db_.Column(kName);
        int column = kFirstFlag;
        for (const PermissionFlag& flag : kFlags)
            row.flags.*flag.flag = db_.IntColumn(column++) != 0;
    }
    return rows;
}

void PermissionRows::Update(const PermissionRow& row) {
    const SqlText condition(kRowCondition, userId_, ctx_.customerId, SqlQuoted(row.type.c_str()),
                            SqlQuoted(row.number.c_str()));
    db_.Execute(SqlText("UPDATE CallLogPermissions SET %s WHERE %s",
                        SqlFragment(Assignments(row.flags)), SqlFragment(condition.c_str())));
}

void PermissionRows::Remove(const PermissionRow& row) {
    const SqlText condition(kRowCondition, userId_, ctx_.customerId, SqlQuoted(row.type.c_str()),
                            SqlQuoted(row.number.c_str()));
    db_.Execute(SqlText("DELETE FROM CallLogPermissions WHERE %s", SqlFragment(condition.c_str())));
}

void PermissionRows::AddOrReplace(const PermissionRow& row) {
    const SqlFragment flags(Assignments(row.flags));
    db_.Execute(
        SqlText("INSERT INTO CallLogPermissions SET contactid='%i', customerid='%i', type='%s', "
                "entityNumber='%s', %s ON DUPLICATE KEY UPDATE %s",
                userId_, ctx_.customerId, SqlQuoted(row.type.c_str()),
                SqlQuoted(row.number.c_str()), flags, flags));
}

std::string PermissionRows::Find(const std::string& text, PermissionRow& row) {
    const SqlQuoted wanted(text.c_str());
    db_.Query(SqlText(kFindSql, SqlFragment(kEntities[TypeIndex(row.type)]),
                      SqlFragment(ctx_.GetCustomerSearchGroup()), wanted, wanted));
    if (!db_.NextRow()) return "There is nobody of this kind with that name or number.";
    row.number = db_.Column(0);
    row.name = db_.Column(1);
    if (db_.NextRow()) return "Several have that name: please give the number.";
    return "";
}
