#include "portal/management/ManagerSearch.h"

#include "portal/context/ManagerContext.h"
#include "portal/management/ManagedUser.h"
#include "portal/management/UserSearch.h"
#include "portal/theme/ListPage.h"

namespace {

constexpr char kAdministratorSql[] =
    "EXISTS (SELECT 1 FROM CustomerContactAttrib AS a WHERE a.userid=c.id AND "
    "a.attribname='administrator' AND a.attribvalue='1')";

SQLTableDefinition Managers(const ManagerContext& ctx) {
    SQLTableDefinition list;
    list.title = "Manager Search";
    list.from = "CustomerContact AS c";
    list.condition = SqlText("c.customerid='%i'", ctx.customerId).c_str();
    list.key = "c.id";
    list.order = "username";
    list.columns = {
        {.field = "id", .heading = "", .sql = "c.id"},
        {.field = "username", .heading = "User name", .sql = "c.username", .searched = true},
        {.field = "name", .heading = "Name", .sql = "c.fullName", .searched = true}};
    return list;
}

}  // namespace

WebItem* BuildManagerSearch(ManagerContext& ctx) {
    SQLTableDefinition list = Managers(ctx);
    list.columns.push_back(
        {.field = "email", .heading = "Mail", .sql = "c.email", .searched = true});
    list.columns.push_back({.field = "administrator",
                            .heading = "Administrator",
                            .sql = kAdministratorSql,
                            .style = SQLStyle::kFlag});
    if (MayManage(ctx))
        list.rowLinks = {{"Edit", "pagename=manager.edit&index=[id]"},
                         {"Permissions", "pagename=manager.permissions&index=[id]"}};
    return AnswerList(ctx, list);
}

XMLManagerSearch::XMLManagerSearch(ManagerContext& ctx) {
    AddXMLRows(ctx, *this, Managers(ctx), "managers", "manager", /*addPage=*/nullptr);
}
