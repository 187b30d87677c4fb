#include "portal/management/UserSearch.h"

#include "cgiFramework/UrlArgument.h"
#include "portal/context/ManagerContext.h"
#include "portal/management/MediaSLA.h"
#include "portal/theme/ListPage.h"

namespace {

// The mirror may hold an entry twice while it is filled.
constexpr char kUsersSql[] =
    "(SELECT DISTINCT GUID, customerid, cn, telephoneNumber, _company FROM LDAPUsers "
    "WHERE customerid IN ('%s')) AS u";
constexpr char kCompanySql[] =
    "(SELECT MAX(c.cn) FROM LDAPCompanies AS c WHERE c.GUID=u._company AND "
    "c.customerid=u.customerid)";
constexpr char kAgentSql[] =
    "(SELECT MAX(a.id) FROM CallCentreAgent AS a WHERE a.customerid=u.customerid AND "
    "a.agentNumber=u.telephoneNumber AND a.agentNumber<>'')";

SQLTableDefinition Users(ManagerContext& ctx) {
    SQLTableDefinition list;
    list.title = "User Search";
    // The context joins the group's ids itself: numbers, made to stand inside IN('...').
    list.from = SqlText(kUsersSql, SqlFragment(ctx.GetCustomerSearchGroup())).c_str();
    list.condition = "TRUE";
    list.key = "u.telephoneNumber, u.GUID";
    list.order = "name";
    list.columns = {
        {.field = "guid", .heading = "", .sql = "u.GUID"},
        {.field = "name", .heading = "Name", .sql = "u.cn", .searched = true},
        {.field = "number", .heading = "Number", .sql = "u.telephoneNumber", .searched = true},
        {.field = "company", .heading = "Company", .sql = kCompanySql}};
    return list;
}

}  // namespace

void AddXMLRows(ManagerContext& ctx, XMLPage& page, SQLTableDefinition definition, const char* root,
                const char* row, const char* addPage) {
    SQLTableQuery query(std::move(definition), ctx);
    const std::string add = addPage != nullptr ? ctx.GetURL("pagename=%s", addPage) : "";
    SQLSession db(ctx.GetSQLSession());
    db.Query(query.CountStatement());
    db.NextRow();
    const auto total = static_cast<unsigned long>(strtoull(db.Column(0), nullptr, 10));
    query.SetRows(total);
    db.Query(query.PageStatement());
    XMLItem& rows =
        page.Adopt(new XMLItem(root, "", "total=\"%lu\" page=\"%ld\" pages=\"%ld\"", total,
                               static_cast<long>(query.page()), static_cast<long>(query.pages())));
    while (db.NextRow()) {
        XMLItem& item = rows.Adopt(new XMLItem(row, "", nullptr));
        int index = 0;
        for (const SQLTableColumn& column : query.definition().columns)
            item.Add(new XMLItem(column.field.c_str(), db.Column(index++), nullptr));
        if (addPage == nullptr || *db.Column(index - 1) != '\0') continue;
        std::string url = add;
        AppendUrlArgument(url, "user", db.Column(0));
        item.Add(new XMLItem("add", url.c_str(), nullptr));
    }
}

WebItem* WebXMLSearch(ManagerContext& ctx) {
    return AnswerList(ctx, Users(ctx));
}

XMLUserSearchSQL::XMLUserSearchSQL(ManagerContext& ctx, bool withAgents) {
    SQLTableDefinition list = Users(ctx);
    if (withAgents)
        list.columns.push_back({.field = "agent", .heading = "Agent", .sql = kAgentSql});
    AddXMLRows(ctx, *this, std::move(list), "users", "user",
               withAgents && MayConfigure(ctx) ? "agent.add" : nullptr);
}
