#include "portal/report/ReportAutocomplete.h"

#include <cstring>
#include <string>

#include "cgiFramework/SQLTableQuery.h"
#include "portal/context/PortalContext.h"

namespace {

// One kind of entity. `sql` reads the columns name and number (by which permissions know it) of the
// customers in the list %s. The permission is a column of CallLogPermissions; without a type the
// caller's permissions do not limit the kind.
struct SuggestedKind {
    const char* tick;
    const char* type;
    const char* icon;
    const char* sql;
    const char* permissionType;
    const char* permission;
};

constexpr SuggestedKind kKinds[] = {
    {"userTick", "user", "user",
     "SELECT cn AS name, telephoneNumber AS number FROM LDAPUsers WHERE customerid IN ", "User",
     "logging"},
    {"deptTick", "dept", "dept",
     "SELECT cn AS name, telephoneNumber AS number FROM LDAPDepartments WHERE customerid IN ",
     "Department", "logging"},
    {"outDeptTick", "dept", "dept",
     "SELECT cn AS name, telephoneNumber AS number FROM LDAPDepartments WHERE customerid IN ",
     "Department", "logging"},
    {"groupTick", "group", "group",
     "SELECT group_name AS name, '' AS number FROM CallLogGroup WHERE contactid IN (0, @contact) "
     "AND customer_id IN ",
     nullptr, nullptr},
    {"contactTick", "contact", "contact",
     "SELECT IF(A_Name='', A_Num, A_Name) AS name, '' AS number FROM CallLog WHERE A_Trunk<>'' AND "
     "A_Out=0 AND gmtdatetime >= NOW() - INTERVAL 7 DAY AND NOT EXISTS (SELECT 1 FROM "
     "CallLogPermissions WHERE contactid=@contact AND type IN ('User','Department') AND "
     "(logging=1 OR recording=1)) AND customerid IN ",
     nullptr, nullptr},
    {"queueTick", "queue", "queue",
     "SELECT queueName AS name, queueNumber AS number FROM CallCentreQueue WHERE customerid IN ",
     "Department", "queue"},
    {"agentTick", "agent", "agent",
     "SELECT agentName AS name, agentNumber AS number FROM CallCentreAgent WHERE customerid IN ",
     "User", "agent"},
    {"companyTick", "company", "company",
     "SELECT cn AS name, '' AS number FROM LDAPCompanies WHERE customerid IN ", nullptr, nullptr},
    {"inboxTick", "inbox", "inbox",
     "SELECT name, id AS number FROM FrontInbox WHERE (NOT isPrivate OR EXISTS (SELECT 1 FROM "
     "CustomerAttribute WHERE CustomerId=@customer AND AttribName='privateib' AND "
     "AttribValue='1')) AND customerid IN ",
     "Inbox", "logging"},
    {"teammateTick", "teammate", "user",
     "SELECT TRIM(CONCAT(firstName, ' ', lastName)) AS name, id AS number FROM FrontTeammate "
     "WHERE customerid IN ",
     "Teammate", "logging"},
};

constexpr char kIdentitySql[] = "SET @contact=%i, @customer=%i";
constexpr char kKindSql[] =
    "SELECT DISTINCT name, '%s' AS type, '%s' AS icon FROM (%s('%s')) AS %s "
    "WHERE name<>'' AND name LIKE '%%%s%%'%s";
// A caller with a row for the type sees what the rows allow; one without any sees all.
constexpr char kPermittedSql[] =
    " AND (NOT EXISTS (SELECT 1 FROM CallLogPermissions WHERE contactid=@contact AND "
    "customerid=@customer AND type='%s' AND %s) OR number IN (SELECT entityNumber FROM "
    "CallLogPermissions WHERE contactid=@contact AND customerid=@customer AND type='%s' AND "
    "%s=1))";
// As in the reports: permissions for logging and recordings count when it is asked whether the
// caller is limited, also where another right admits.
constexpr char kLimitsSql[] = "(logging=1 OR recording=1 OR %s=1)";
constexpr char kOrderSql[] = " ORDER BY type, name ASC LIMIT 50";

// Distinct pairs, which the server reads off its index without visiting every call.
constexpr char kDdiSql[] =
    "SELECT DISTINCT name FROM (SELECT DISTINCT customerid, targetNumber AS name FROM CallLog "
    "WHERE customerid IN ('%s')) AS ddi WHERE name<>'' AND name LIKE '%%%s%%' "
    "ORDER BY name LIMIT 50";
constexpr char kTagSql[] =
    "SELECT DISTINCT name FROM FrontTag WHERE customerid IN ('%s') AND name LIKE '%%%s%%' "
    "ORDER BY name LIMIT 50";

// The context joins the group's ids itself: numbers, made to stand inside IN('...').
SqlFragment SearchGroup(PortalContext& ctx) {
    return SqlFragment(ctx.GetCustomerSearchGroup());
}

SqlQuoted Pattern(const PortalContext& ctx) {
    return SqlQuoted(LikeLiteral(ctx.ArgumentText("q")).c_str());
}

std::string PermittedCondition(const SuggestedKind& kind) {
    if (kind.permissionType == nullptr) return "";
    const SqlFragment flag(kind.permission);
    const SqlFragment limits(SqlText(kLimitsSql, flag).c_str());
    const SqlQuoted type(kind.permissionType);
    return SqlText(kPermittedSql, type, limits, type, flag).c_str();
}

std::string KindStatement(PortalContext& ctx, const SuggestedKind& kind) {
    const std::string icon = std::string("Images/theme6/") + kind.icon + ".svg";
    return SqlText(kKindSql, SqlQuoted(kind.type), SqlQuoted(icon.c_str()), SqlFragment(kind.sql),
                   SearchGroup(ctx), SqlFragment(kind.tick), Pattern(ctx),
                   SqlFragment(PermittedCondition(kind)))
        .c_str();
}

void AddText(JSONObject& object, const char* name, const char* value) {
    // A backslash of the text is doubled: the document would take it for its own. A control
    // character that stood in it as it is would make it unreadable.
    std::string text;
    for (; *value != '\0'; ++value) {
        if (*value == '\\') text += '\\';
        text += static_cast<unsigned char>(*value) < ' ' ? ' ' : *value;
    }
    object.Add(new JSONPair(name, text.c_str(), /*raw=*/false));
}

}  // namespace

ReportEntitySuggestions::ReportEntitySuggestions(PortalContext& ctx) : JSONPage(/*asHtml=*/false) {
    no_top_obj = true;
    JSONArray& list = Adopt(new JSONArray);
    std::string statement;
    for (const SuggestedKind& kind : kKinds) {
        if (strcmp(ctx.ArgumentText(kind.tick), "on") != 0) continue;
        if (!statement.empty()) statement += " UNION ";
        statement += KindStatement(ctx, kind);
    }
    if (statement.empty()) return;
    SQLSession db(ctx.GetSQLSession());
    db.Execute(SqlText(kIdentitySql, ctx.contactId, ctx.customerId));
    db.Query(SqlText("%s%s", SqlFragment(statement), SqlFragment(kOrderSql)));
    while (db.NextRow()) {
        JSONObject& object = list.Adopt(new JSONObject);
        AddText(object, "label", db.Column(0));
        AddText(object, "type", db.Column(1));
        AddText(object, "icon", db.Column(2));
    }
}

ReportValueSuggestions::ReportValueSuggestions(PortalContext& ctx) : JSONPage(/*asHtml=*/false) {
    no_top_obj = true;
    JSONArray& list = Adopt(new JSONArray);
    const std::string kind = ctx.ArgumentText("searchtype");
    if (kind != "ddi" && kind != "tag") return;
    SQLSession db(ctx.GetSQLSession());
    if (kind == "ddi")
        db.Query(SqlText(kDdiSql, SearchGroup(ctx), Pattern(ctx)));
    else
        db.Query(SqlText(kTagSql, SearchGroup(ctx), Pattern(ctx)));
    while (db.NextRow()) {
        JSONObject& object = list.Adopt(new JSONObject);
        AddText(object, "label", db.Column(0));
        AddText(object, "type", kind.c_str());
    }
}
