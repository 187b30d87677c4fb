#include "portal/report/ReportEntity.h"

#include "portal/context/PortalContext.h"

namespace {

// Recordings count when it is asked whether the caller is restricted, but only logging admits.
constexpr char kPermissionsSql[] =
    "SELECT * FROM CallLogPermissions WHERE contactid='%i' AND customerid='%s' AND type='%s' "
    "AND (logging='1' or recording='1') ";
constexpr char kPermittedSql[] =
    "SELECT cn FROM %s as u INNER JOIN CallLogPermissions as clp "
    "ON clp.entityNumber = u.telephonenumber WHERE clp.contactid='%i' AND clp.customerid IN('%s') "
    "and clp.logging='1' and clp.type='%s' and u.customerid IN('%s') and u.cn='%s'";
constexpr char kAllNamesSql[] = "SELECT QUOTE(cn) FROM %s WHERE customerid IN('%s')";
constexpr char kAllPermittedNamesSql[] =
    "SELECT QUOTE(cn) FROM %s as u INNER JOIN CallLogPermissions as clp "
    "ON clp.entityNumber = u.telephonenumber WHERE clp.contactid='%i' AND clp.customerid IN('%s') "
    "and clp.logging='1' and clp.type='%s' and u.customerid IN('%s')";
// Calls that went to a voicemail box belong to the departments.
constexpr char kVoicemailSql[] = " UNION ALL SELECT QUOTE('!Voicemail')";

struct Kind {
    const char* type;
    const char* table;
    const char* refusal;
    const char* moreNamesSql;
};
constexpr Kind kUser = {"User", "LDAPUsers", "Restricted user selected!", ""};
constexpr Kind kDepartment = {"Department", "LDAPDepartments", "Restricted department selected!",
                              kVoicemailSql};

// The context joins the group's ids itself: numbers, made to stand inside IN('...').
SqlFragment SearchGroup(PortalContext& ctx) {
    return SqlFragment(ctx.GetCustomerSearchGroup());
}

bool IsRestricted(PortalContext& ctx, const Kind& kind) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kPermissionsSql, ctx.contactId, SqlQuoted(ctx.customerIdString),
                     SqlQuoted(kind.type)));
    return db.RowCount() > 0;
}

bool IsPermitted(PortalContext& ctx, const Kind& kind, const UString& name) {
    const SqlFragment group = SearchGroup(ctx);
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kPermittedSql, SqlFragment(kind.table), ctx.contactId, group,
                     SqlQuoted(kind.type), group, SqlQuoted(name)));
    return db.RowCount() > 0;
}

ReportEntity GetEntity(PortalContext& ctx, const Kind& kind, const UString& name, bool everything) {
    const bool restricted = !everything && IsRestricted(ctx, kind);
    if (restricted && !IsPermitted(ctx, kind, name))
        return {"='' AND '1'='0'", kind.refusal, restricted};
    return {SqlText("='%s'", SqlQuoted(name)).c_str(), name, restricted};
}

void AppendNames(PortalContext& ctx, const Kind& kind, bool restricted,
                 std::vector<std::string>& names) {
    const SqlFragment group = SearchGroup(ctx);
    const SqlText all = restricted ? SqlText(kAllPermittedNamesSql, SqlFragment(kind.table),
                                             ctx.contactId, group, SqlQuoted(kind.type), group)
                                   : SqlText(kAllNamesSql, SqlFragment(kind.table), group);
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText("%s%s", SqlFragment(all.c_str()), SqlFragment(kind.moreNamesSql)));
    while (db.NextRow())
        names.emplace_back(db.View(0));
}

}  // namespace

ReportEntity GetUserEntity(PortalContext& ctx, const UString& name, bool everything) {
    return GetEntity(ctx, kUser, name, everything);
}

ReportEntity GetDeptEntity(PortalContext& ctx, const UString& name, bool everything) {
    return GetEntity(ctx, kDepartment, name, everything);
}

ReportEntity GetAllEntities(PortalContext& ctx, bool users, bool departments, bool everything) {
    if (!users && !departments) users = departments = true;
    ReportEntity all;
    all.name = !departments ? "All Users" : users ? "All Users and Departments" : "All Departments";
    std::vector<std::string> names;
    for (const Kind& kind : {kUser, kDepartment}) {
        if (!(kind.table == kUser.table ? users : departments)) continue;
        const bool restricted = !everything && IsRestricted(ctx, kind);
        AppendNames(ctx, kind, restricted, names);
        all.restricted = all.restricted || restricted;
    }
    if (all.restricted) all.name += " you may see";
    all.condition = NameListCondition(names);
    return all;
}

std::string NameListCondition(const std::vector<std::string>& quotedNames) {
    if (quotedNames.empty()) return "IN('entity generation did not match anything')";
    std::string condition = "IN (";
    for (const std::string& name : quotedNames) {
        if (condition.back() != '(') condition += ',';
        condition += name;
    }
    return condition + ")";
}
