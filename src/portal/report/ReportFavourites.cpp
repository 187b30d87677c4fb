#include "portal/report/ReportFavourites.h"

#include "portal/context/PortalContext.h"

namespace {

constexpr char kListedSql[] = "SELECT 1 FROM CallReport WHERE pagename='%s' AND hidden!=1";
constexpr char kFavouriteSql[] =
    "SELECT 1 FROM CustomerContactAttrib WHERE userid=%i AND attribname='myreport' AND "
    "attribvalue='%s'";
constexpr char kAddSql[] =
    "INSERT INTO CustomerContactAttrib (userid,attribname,attribvalue) VALUES "
    "(%i,'myreport','%s')";
constexpr char kRemoveSql[] =
    "DELETE FROM CustomerContactAttrib WHERE userid=%i AND attribname='myreport' AND "
    "attribvalue='%s'";

constexpr char kNotGenuine[] =
    "Your session has only just begun, so My Reports was left as it is. Please choose again.";

bool Finds(PortalContext& ctx, const SqlText& query) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(query);
    return db.NextRow();
}

// A second row of the same report would say nothing new.
const char* AddFavourite(PortalContext& ctx, const UString& report) {
    const SqlQuoted quoted(report);
    if (!Finds(ctx, SqlText(kListedSql, quoted))) return "This report does not exist.";
    if (Finds(ctx, SqlText(kFavouriteSql, ctx.contactId, quoted))) return nullptr;
    SQLSession(ctx.GetSQLSession()).Execute(SqlText(kAddSql, ctx.contactId, quoted));
    return nullptr;
}

}  // namespace

const char* ChangeFavourites(PortalContext& ctx) {
    const UString added = ctx.ArgumentText("addmyreport");
    const UString removed = ctx.ArgumentText("removemyreport");
    if (added.IsEmpty() && removed.IsEmpty()) return nullptr;
    if (!ctx.MayChange()) return kNotGenuine;
    if (!added.IsEmpty()) return AddFavourite(ctx, added);
    SQLSession(ctx.GetSQLSession()).Execute(SqlText(kRemoveSql, ctx.contactId, SqlQuoted(removed)));
    return nullptr;
}
