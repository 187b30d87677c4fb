#include "portal/report/ReportGroup.h"

#include <set>
#include <vector>

#include "portal/context/PortalContext.h"
#include "portal/report/ReportEntitySource.h"

namespace {

constexpr char kGroupIdSql[] =
    "SELECT group_id FROM CallLogGroup WHERE group_name='%s' AND customer_id=%d"
    " AND contactid IN('0','%i') ORDER BY contactid DESC";
constexpr char kGroupSql[] =
    "SELECT group_id, contactid IN('0','%i') FROM CallLogGroup "
    "WHERE customer_id='%s' AND group_name='%s'";
enum { kGroupId, kGroupOpen };
constexpr char kNestedSql[] =
    "SELECT member_name,guid FROM CallLogGroupMembers WHERE group_id=%d AND type='G'";
enum { kMemberName };
constexpr char kMembersSql[] =
    "SELECT u.cn AS name FROM CallLogGroupMembers AS m "
    "INNER JOIN %s AS u ON u.telephonenumber=m.member_number AND u.customerid IN('%s')%s "
    "WHERE m.group_id IN (%s) AND m.type='%s'";
constexpr char kPermittedSql[] =
    " INNER JOIN CallLogPermissions AS clp ON clp.entityNumber=u.telephonenumber "
    "AND clp.contactid='%i' AND clp.customerid IN('%s') AND clp.type='%s' AND clp.logging='1'";

// The groups of that name that the caller may use.
std::vector<int> FindGroups(PortalContext& ctx, const UString& name) {
    std::vector<int> ids;
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kGroupSql, ctx.contactId, SqlQuoted(ctx.customerIdString), SqlQuoted(name)));
    while (db.NextRow())
        if (db.IntColumn(kGroupOpen) != 0) ids.push_back(db.IntColumn(kGroupId));
    return ids;
}

std::vector<UString> NestedGroups(PortalContext& ctx, int group) {
    std::vector<UString> names;
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kNestedSql, group));
    while (db.NextRow())
        names.emplace_back(db.Column(kMemberName));
    return names;
}

// The group and all that it holds, each once: groups may hold each other.
std::set<int> WithNested(PortalContext& ctx, const UString& name) {
    std::set<int> all;
    std::vector<UString> waiting = {name};
    while (!waiting.empty()) {
        const UString next = waiting.back();
        waiting.pop_back();
        for (const int id : FindGroups(ctx, next)) {
            if (!all.insert(id).second) continue;
            for (const UString& nested : NestedGroups(ctx, id))
                waiting.push_back(nested);
        }
    }
    return all;
}

std::string MembersSql(PortalContext& ctx, const EntitySource& source, const char* type,
                       const std::string& ids, bool restricted) {
    const SqlFragment group(ctx.GetCustomerSearchGroup());
    const SqlFragment permitted(
        restricted ? SqlText(kPermittedSql, ctx.contactId, group, SqlQuoted(source.type)).c_str()
                   : "");
    return SqlText(kMembersSql, SqlFragment(source.table), group, permitted, SqlFragment(ids),
                   SqlQuoted(type))
        .c_str();
}

}  // namespace

GroupMembers GetGroupMembers(PortalContext& ctx, const UString& name, bool everything) {
    GroupMembers members;
    std::string ids;
    for (const int id : WithNested(ctx, name))
        ids += (ids.empty() ? "" : ",") + std::to_string(id);
    if (ids.empty()) return members;

    const bool users = !everything && IsRestricted(ctx, kUsers);
    const bool departments = !everything && IsRestricted(ctx, kDepartments);
    members.restricted = users || departments;
    members.statement = MembersSql(ctx, kUsers, "U", ids, users) + " UNION ALL " +
                        MembersSql(ctx, kDepartments, "D", ids, departments);
    return members;
}

int GetReportingGroupId(PortalContext& ctx, const UString& name) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kGroupIdSql, SqlQuoted(name), ctx.customerId, ctx.contactId));
    return db.NextRow() ? db.IntColumn(0) : 0;
}
