#include "portal/report/ReportEntity.h"

#include "cgiFramework/SQLTableQuery.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportEntitySource.h"
#include "portal/report/ReportGroup.h"
#include "portal/report/ReportTrunks.h"

namespace {

constexpr char kPermittedSql[] =
    "SELECT %s FROM %s as u INNER JOIN CallLogPermissions as clp "
    "ON clp.entityNumber = u.%s WHERE clp.contactid='%i' AND clp.customerid IN('%s') "
    "and clp.%s='1' and clp.type='%s' and u.customerid IN('%s') and u.%s='%s' ";
// A row when the caller may not see everybody and the name is none of the kind's.
constexpr char kForeignNameSql[] =
    "SELECT 1 FROM CallLogPermissions WHERE contactid='%i' AND customerid='%s' AND "
    "type IN ('User','Department') AND NOT EXISTS "
    "(SELECT 1 FROM %s AS u WHERE u.customerid IN('%s') AND u.%s='%s') LIMIT 1";
constexpr char kOfCompanySql[] =
    " AND _company IN (SELECT GUID FROM LDAPCompanies WHERE customerid IN('%s') AND cn='%s')";
constexpr char kWithNameSql[] = " AND %s LIKE '%%%s%%'";
constexpr char kFullNameSql[] = " AND TRIM(CONCAT(firstName,' ',lastName))='%s'";
constexpr char kVoicemail[] = "!Voicemail";

constexpr char kInboxSql[] =
    "SELECT QUOTE(id), name, id FROM FrontInbox %s WHERE %s='%s' %s AND FrontInbox.customerid IN('%s')";
constexpr char kAllInboxesSql[] =
    "SELECT QUOTE(id), 'All Inboxes' AS name, id FROM FrontInbox %s WHERE FrontInbox.customerid IN('%s') %s";
constexpr char kInboxPermissionSql[] =
    "INNER JOIN CallLogPermissions AS clp ON clp.entityNumber=id AND clp.contactid='%i' "
    "AND clp.customerid='%s' AND clp.type='Inbox' AND clp.logging='1'";
enum { kInboxId, kInboxName };

constexpr char kNothing[] = "='' AND '1'='0'";

ReportEntity Refused(const char* name) {
    return {kNothing, kNothing, name, /*restricted=*/true, /*chosen=*/true};
}

ReportEntity Only(const UString& name, bool restricted) {
    const std::string condition = SqlText("='%s'", SqlQuoted(name)).c_str();
    return {condition, condition, name, restricted, /*chosen=*/true};
}

bool IsPermitted(PortalContext& ctx, const EntitySource& source, const UString& name) {
    const SqlFragment group(ctx.GetCustomerSearchGroup());
    const SqlFragment column(source.name);
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kPermittedSql, column, SqlFragment(source.table), SqlFragment(source.number),
                     ctx.contactId, group, SqlFragment(source.right), SqlQuoted(source.type), group,
                     column, SqlQuoted(name)));
    return db.RowCount() > 0;
}

// Who may see all of one kind, say all users, must not get at others by naming one of them as such.
bool IsForeignName(PortalContext& ctx, const EntitySource& source, const UString& name) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kForeignNameSql, ctx.contactId, SqlQuoted(ctx.customerIdString),
                     SqlFragment(source.table), SqlFragment(ctx.GetCustomerSearchGroup()),
                     SqlFragment(source.name), SqlQuoted(name)));
    return db.RowCount() > 0;
}

ReportEntity GetEntity(PortalContext& ctx, const EntitySource& source, const UString& name,
                       bool everything) {
    const bool restricted = !everything && IsRestricted(ctx, source);
    const bool refused = restricted ? !IsPermitted(ctx, source, name)
                                    : !everything && IsForeignName(ctx, source, name);
    if (refused) return Refused(source.refusal);
    return Only(name, restricted);
}

constexpr char kPermitted[] = " you may see";  // behind "All Users"

// A statement of names, put together from several sources.
class NameQuery {
  public:
    NameQuery(PortalContext& ctx, bool everything) : ctx_(ctx), everything_(everything) {}

    // The names of a source that the caller may see, with more conditions on them.
    void Add(const EntitySource& source, const std::string& more = "") {
        const bool restricted = !everything_ && IsRestricted(ctx_, source);
        restricted_ = restricted_ || restricted;
        const UString quoted = UString("QUOTE(") + source.name + ")";
        Append(quoted_, NamesSql(ctx_, source, quoted.c_str(), restricted) + more);
        Append(plain_, NamesSql(ctx_, source, source.name, restricted) + more);
    }
    void AddName(const char* name) {
        const SqlQuoted text(name);
        Append(quoted_, SqlText("SELECT QUOTE('%s')", text).c_str());
        Append(plain_, SqlText("SELECT '%s'", text).c_str());
    }

    ReportEntity Run(const UString& name) {
        std::vector<std::string> names;
        SQLSession db(ctx_.GetSQLSession());
        db.Query(SqlText("%s", SqlFragment(quoted_)));
        names.reserve(db.RowCount());
        while (db.NextRow())
            names.emplace_back(db.View(0));
        return {NameListCondition(names), "IN (" + plain_ + ")", name, restricted_,
                /*chosen=*/false};
    }

  private:
    static void Append(std::string& statement, const std::string& part) {
        if (!statement.empty()) statement += " UNION ALL ";
        statement += part;
    }

    PortalContext& ctx_;
    bool everything_;
    bool restricted_ = false;
    std::string quoted_;
    std::string plain_;
};

struct PluralKind {
    const EntitySource* source;
    const char* plural;
};
const std::vector<PluralKind> kPeople = {{&kUsers, "Users"}, {&kDepartments, "Departments"}};

// The kinds that the form of a report offers.
std::vector<PluralKind> OfferedKinds(const LumoraReportFilter& filter) {
    std::vector<PluralKind> kinds;
    if (filter.hasUser) kinds.push_back({&kUsers, "Users"});
    if (filter.hasDepartment || filter.hasOutDept) kinds.push_back({&kDepartments, "Departments"});
    if (filter.hasQueue) kinds.push_back({&kQueues, "Queues"});
    if (filter.hasAgent) kinds.push_back({&kAgents, "Agents"});
    if (filter.hasTeammate) kinds.push_back({&kTeammates, "Teammates"});
    return kinds.empty() ? kPeople : kinds;
}

// "All Users, Departments and Queues"
UString AllOf(const std::vector<PluralKind>& kinds) {
    UString name("All ");
    for (size_t i = 0; i < kinds.size(); ++i) {
        if (i > 0) name += i + 1 < kinds.size() ? ", " : " and ";
        name += kinds[i].plural;
    }
    return name;
}

// Everybody of these kinds.
ReportEntity GetAllEntities(PortalContext& ctx, const std::vector<PluralKind>& kinds,
                            bool everything) {
    NameQuery names(ctx, everything);
    for (const PluralKind& kind : kinds) {
        names.Add(*kind.source);
        // Calls that went to a voicemail box belong to the departments.
        if (kind.source == &kDepartments) names.AddName(kVoicemail);
    }
    ReportEntity all = names.Run(AllOf(kinds));
    if (all.restricted) all.name += kPermitted;
    return all;
}

// Those of these kinds whose names hold the text.
ReportEntity GetMatchingEntities(PortalContext& ctx, const std::vector<PluralKind>& kinds,
                                 const UString& text, bool everything) {
    NameQuery names(ctx, everything);
    const SqlQuoted pattern(LikeLiteral(text.c_str()).c_str());
    for (const PluralKind& kind : kinds)
        names.Add(*kind.source,
                  SqlText(kWithNameSql, SqlFragment(kind.source->name), pattern).c_str());
    ReportEntity matching = names.Run(text);
    matching.chosen = true;
    return matching;
}

}  // namespace

ReportEntity GetUserEntity(PortalContext& ctx, const UString& name, bool everything) {
    return GetEntity(ctx, kUsers, name, everything);
}

ReportEntity GetDeptEntity(PortalContext& ctx, const UString& name, bool everything) {
    return GetEntity(ctx, kDepartments, name, everything);
}

ReportEntity GetQueueEntity(PortalContext& ctx, const UString& name, bool everything) {
    return GetEntity(ctx, kQueues, name, everything);
}

ReportEntity GetAgentEntity(PortalContext& ctx, const UString& name, bool everything) {
    return GetEntity(ctx, kAgents, name, everything);
}

ReportEntity GetCompanyEntity(PortalContext& ctx, const UString& name, bool departments,
                              bool everything) {
    const std::string ofCompany =
        SqlText(kOfCompanySql, SqlFragment(ctx.GetCustomerSearchGroup()), SqlQuoted(name)).c_str();
    NameQuery names(ctx, everything);
    names.Add(kUsers, ofCompany);
    if (departments) names.Add(kDepartments, ofCompany);
    ReportEntity company = names.Run(name);
    company.chosen = true;
    return company;
}

ReportEntity GetInboxEntity(PortalContext& ctx, const UString& id, const UString& name,
                            bool everything) {
    const bool all = id.IsEmpty() && name.IsEmpty();
    const bool restricted = !everything && IsRestricted(ctx, kInboxes);
    const SqlFragment permitted(
        restricted
            ? SqlText(kInboxPermissionSql, ctx.contactId, SqlQuoted(ctx.customerIdString)).c_str()
            : "");
    const SqlFragment open(ctx.GetCustomerAttribute("privateib") == "1" ? ""
                                                                        : " AND NOT isPrivate ");
    const SqlFragment group(ctx.GetCustomerSearchGroup());
    SQLSession db(ctx.GetSQLSession());
    if (all)
        db.Query(SqlText(kAllInboxesSql, permitted, group, open));
    else
        db.Query(SqlText(kInboxSql, permitted, SqlFragment(id.IsEmpty() ? "name" : "id"),
                         SqlQuoted(id.IsEmpty() ? name : id), open, group));
    ReportEntity inbox;
    std::vector<std::string> ids;
    while (db.NextRow()) {
        ids.emplace_back(db.View(kInboxId));
        inbox.name = db.Column(kInboxName);
    }
    if (ids.empty() && !all) return Refused("No permission for inbox");
    if (ids.empty()) inbox.name = "All Inboxes";
    if (all && restricted) inbox.name += kPermitted;
    inbox.condition = inbox.subquery = NameListCondition(ids);
    inbox.restricted = restricted;
    inbox.chosen = !all;
    return inbox;
}

ReportEntity GetTeammateEntity(PortalContext& ctx, const UString& name, bool everything) {
    NameQuery ids(ctx, everything);
    ids.Add(kTeammates, SqlText(kFullNameSql, SqlQuoted(name)).c_str());
    ReportEntity teammate = ids.Run(name);
    teammate.chosen = true;
    return teammate;
}

ReportEntity GetGroupEntity(PortalContext& ctx, const UString& name, bool everything) {
    const GroupMembers members = GetGroupMembers(ctx, name, everything);
    ReportEntity group{"AND FALSE", "AND FALSE", name, members.restricted, /*chosen=*/true};
    if (members.statement.empty()) return group;
    std::vector<std::string> names;
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText("SELECT QUOTE(name) FROM (%s) AS member", SqlFragment(members.statement)));
    while (db.NextRow())
        names.emplace_back(db.View(0));
    if (names.empty()) return group;
    group.condition = NameListCondition(names);
    group.subquery = "IN (" + members.statement + ")";
    return group;
}

ReportEntity GetChosenEntity(PortalContext& ctx, const LumoraReportFilter& filter) {
    const bool everything = filter.allowAllRecords;
    if (IsTrunkReport(filter)) return GetTrunkEntity(ctx, filter);
    if (IsTicked(filter.globcb1))
        return filter.hasInbox ? GetInboxEntity(ctx, UString(), UString(), everything)
                               : GetAllEntities(ctx, OfferedKinds(filter), everything);
    // A user or department narrows every report, the other kinds only those that offer them.
    if (!filter.userfilter.IsEmpty()) return GetUserEntity(ctx, filter.userfilter, everything);
    if (!filter.department.IsEmpty()) return GetDeptEntity(ctx, filter.department, everything);
    if (filter.hasGroup && !filter.group.IsEmpty())
        return GetGroupEntity(ctx, filter.group, everything);
    if (filter.hasCompany && !filter.company.IsEmpty())
        return GetCompanyEntity(ctx, filter.company, filter.hasDepartment || filter.hasOutDept,
                                everything);
    if (filter.hasQueue && !filter.queueFilter.IsEmpty())
        return GetQueueEntity(ctx, filter.queueFilter, everything);
    if (filter.hasAgent && !filter.agentFilter.IsEmpty())
        return GetAgentEntity(ctx, filter.agentFilter, everything);
    if (filter.hasTeammate && filter.searchtype == "teammate" && !filter.suggest1.IsEmpty())
        return GetTeammateEntity(ctx, filter.suggest1, everything);
    if (filter.hasInbox) return GetInboxEntity(ctx, filter.inboxId, filter.inboxName, everything);
    const auto kinds = OfferedKinds(filter);
    if (filter.searchtype == "freetext" && !filter.suggest1.IsEmpty())
        return GetMatchingEntities(ctx, kinds, filter.suggest1, everything);
    return GetAllEntities(ctx, kinds, everything);
}

ReportEntity GetSecondEntity(PortalContext& ctx, const LumoraReportFilter& filter) {
    const bool everything = filter.allowAllRecords;
    if (!filter.userfilter2.IsEmpty()) return GetUserEntity(ctx, filter.userfilter2, everything);
    if (!filter.department2.IsEmpty()) return GetDeptEntity(ctx, filter.department2, everything);
    if (!filter.group2.IsEmpty()) return GetGroupEntity(ctx, filter.group2, everything);
    return GetAllEntities(ctx, kPeople, everything);
}

bool SeesAllTeammates(PortalContext& ctx) {
    return !IsRestricted(ctx, kTeammates);
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
