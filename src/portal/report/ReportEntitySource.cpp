#include "portal/report/ReportEntitySource.h"

#include <cstring>

#include "portal/context/PortalContext.h"

namespace {

constexpr char kPermissionsSql[] =
    "SELECT * FROM CallLogPermissions WHERE contactid='%i' AND customerid='%s' AND type='%s' "
    "AND (logging='1' or recording='1'%s) ";
constexpr char kNamesSql[] = "SELECT %s FROM %s WHERE customerid%s";
constexpr char kPermittedNamesSql[] =
    "SELECT %s FROM %s as cca INNER JOIN CallLogPermissions as ccp on ccp.entityNumber=cca.%s "
    "AND ccp.customerid='%s' and ccp.contactid='%i' and ccp.type='%s' and ccp.%s='1' "
    "WHERE cca.customerid%s";

// What follows a column of customers' ids. The context joins the ids of a group itself: numbers,
// made to stand inside IN('...').
SqlFragment OfCustomers(PortalContext& ctx) {
    const std::string group = ctx.GetCustomerSearchGroup();
    return SqlFragment(group == ctx.customerIdString.c_str() ? "='" + group + "'"
                                                             : " IN('" + group + "')");
}

}  // namespace

bool IsRestricted(PortalContext& ctx, const EntitySource& source) {
    const std::string right = source.right;
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kPermissionsSql, ctx.contactId, SqlQuoted(ctx.customerIdString),
                     SqlQuoted(source.type),
                     SqlFragment(right == "logging" ? "" : " or " + right + "='1'")));
    return db.RowCount() > 0;
}

std::string NamesSql(PortalContext& ctx, const EntitySource& source, const char* column,
                     bool restricted) {
    const SqlFragment names(column);
    const SqlFragment table(source.table);
    const SqlFragment customers = OfCustomers(ctx);
    if (!restricted) return SqlText(kNamesSql, names, table, customers).c_str();
    return SqlText(kPermittedNamesSql, names, table, SqlFragment(source.number),
                   SqlQuoted(ctx.customerIdString), ctx.contactId, SqlQuoted(source.type),
                   SqlFragment(source.right), customers)
        .c_str();
}
