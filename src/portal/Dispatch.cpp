#include "portal/Dispatch.h"

#include <cstring>
#include <memory>

#include "portal/PageTable.h"
#include "portal/background/BackgroundRender.h"
#include "portal/context/ManagerContext.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr char kSecurityLevelSql[] =
    "SELECT * FROM CustomerUserRight WHERE GUID = '%i' and rightid = '%i'";
constexpr char kReportCategorySql[] =
    "SELECT category, attribvalue & (1<<category) FROM CallReport INNER JOIN CustomerContactAttrib ON userId='%i' AND attribname='reportmask' WHERE pagename='%s'";

constexpr int kRestrictedUser = 8;
constexpr int kConfigureCallCentre = 32;

constexpr char kReporterPrefix[] = "reporter.";

const char* NormalName(const char* name) {
    const bool isCallReport = *name == '\0' || strcmp(name, "homepage") == 0 ||
                              strncmp(name, kReporterPrefix, strlen(kReporterPrefix)) == 0;
    return isCallReport ? "callreport" : name;
}

// What answers a name that has no row.
std::unique_ptr<WebItem> FallbackPage(ManagerContext& ctx, const char* name) {
    constexpr char kNoAccess[] = "No access";
    constexpr char kUnknown[] = "Unknown Page";
    WebItem* page = nullptr;
    if (CheckSecurityLevel(ctx, kRestrictedUser))
        page = MessagePage(ctx, kNoAccess, "Sorry you do not have rights for this");
    else if (!CheckSecurityLevel(ctx, kConfigureCallCentre))
        page = MessagePage(ctx, kNoAccess,
                           "Sorry you do not have Configure Call Centre assigned security");
    else if (std::unique_ptr<WebItem> defined = BuildDefinedPage(ctx, name))
        return defined;
    else
        page = MessagePage(ctx, kUnknown, kUnknown);
    return std::unique_ptr<WebItem>(page);
}

}  // namespace

bool CheckSecurityLevel(ManagerContext& ctx, int rightId) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kSecurityLevelSql, ctx.contactId, rightId));
    return db.NextRow();
}

bool CheckReportCategory(ManagerContext& ctx) {
    const WebArgument* submit = ctx.FindWebArgument("submit");
    const WebArgument* report = ctx.FindWebArgument("report");
    if (submit == nullptr || *submit != "Generate Report" || report == nullptr) return true;
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kReportCategorySql, ctx.contactId, SqlQuoted(report->Text())));
    return !db.NextRow() || db.IntColumn(1) != 0;
}

void DisplayPage(ManagerContext& ctx, WebRender* out) {
    ctx.ReadSettings();
    ctx.isCCSuperVisor();
    WebArgument& pagename = ctx["pagename"];
    pagename.type_ = WebArgument::Global;
    const UString name(NormalName(pagename.Text()));
    ctx.client_redirect = "";
    ctx.internal_redirect = "";
    FillMenu(ctx, name.c_str());

    std::unique_ptr<WebItem> page = BuildPage(ctx, name.c_str());
    if (page == nullptr) page = FallbackPage(ctx, name.c_str());
    if (!ctx.internal_redirect.IsEmpty()) return;
    if (ctx.background) BeginBackgroundOutput(ctx);
    page->Render(ctx, out);
}
