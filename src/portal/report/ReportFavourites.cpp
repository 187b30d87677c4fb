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

const WebArgument* Given(const WebContext& ctx, const char* name) {
    const WebArgument* argument = ctx.FindWebArgument(name);
    return argument != nullptr && !argument->IsEmpty() ? argument : nullptr;
}

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
    const WebArgument* added = Given(ctx, "addmyreport");
    const WebArgument* removed = Given(ctx, "removemyreport");
    if (added == nullptr && removed == nullptr) return nullptr;
    if (!ctx.MayChange()) return kNotGenuine;
    if (added != nullptr) return AddFavourite(ctx, added->value);
    SQLSession(ctx.GetSQLSession())
        .Execute(SqlText(kRemoveSql, ctx.contactId, SqlQuoted(removed->value)));
    return nullptr;
}
