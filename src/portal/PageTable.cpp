#include "portal/PageTable.h"

#include <cstring>

#include "cgiFramework/FilePage.h"
#include "portal/Dispatch.h"
#include "portal/FileAnswers.h"
#include "portal/context/ManagerContext.h"
#include "portal/management/CustomerUserPassword.h"
#include "portal/management/ManagerEdit.h"
#include "portal/management/ManagerSearch.h"
#include "portal/management/MediaSLA.h"
#include "portal/management/UserSearch.h"
#include "portal/report/LumoraReportPage.h"
#include "portal/report/ReportAutocomplete.h"
#include "portal/report/ReportProgress.h"
#include "portal/report/ReportShortcuts.h"
#include "portal/tabular/TabularReport.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr char kNoRights[] = "Sorry you do not have rights for this";
constexpr char kNoAccessRights[] = "Sorry you do not have rights to access this";
constexpr int kNoRight = 0;

enum class Match { kExact, kPrefix };

// Which right, a row of CustomerUserRight, opens or closes a page.
struct Guard {
    int refusedBy = kNoRight;                       // refused when the user holds it
    bool (*allows)(ManagerContext& ctx) = nullptr;  // a further condition, or none
    int needs = kNoRight;                           // refused when the user lacks it,
    bool (*unless)(ManagerContext& ctx) = nullptr;  // but for requests of this kind
    const char* refusal = kNoRights;
};

struct PageRow {
    const char* name;
    Match match;
    Guard guard;
    WebItem* (*build)(ManagerContext& ctx);          // null: the fallback answers
    const char* caption;                             // its entry in the menu, or null for none
    bool (*offered)(ManagerContext& ctx) = nullptr;  // whether the menu has it, rights apart
};

WebItem* BuildCallReport(ManagerContext& ctx) {
    ctx.GetWebArgument("print", WebArgument::Any)->type_ = WebArgument::Global;
    ctx.GetWebArgument("csv", WebArgument::Any)->type_ = WebArgument::Global;
    ctx.GetWebArgument("xlsx", WebArgument::Any)->type_ = WebArgument::Global;
    ctx.GetWebArgument("wallboard", WebArgument::Any)->type_ = WebArgument::Global;
    if (IsProgressAsked(ctx)) return new ReportProgressFeed(ctx);
    auto page = std::make_unique<LumoraReportPage>(ctx);
    if (std::unique_ptr<WebItem> file = page->GetCSVData()) return file.release();
    if (std::unique_ptr<WebItem> print = page->GetPrintPage(ctx)) return print.release();
    return page.release();
}

// The report that was run last in this session, with its criteria, as CSV; or the one that the
// request itself names.
WebItem* BuildCsvReport(ManagerContext& ctx) {
    if (!AskForCsv(ctx))
        return MessagePage(ctx, "No report", "No report has been run in this session yet.");
    return BuildCallReport(ctx);
}

// The priced calls of a period, last month unless the request says, as CSV.
WebItem* BuildPriceRecord(ManagerContext& ctx) {
    AskForPriceRecord(ctx);
    return BuildCallReport(ctx);
}

WebItem* BuildLogout(ManagerContext& ctx) {
    ctx.DeleteSession();
    ctx.client_redirect = "logout.cgi";
    return MessagePage(ctx, "Sign out", "You are being signed out.");
}

WebItem* BuildManagerEdit(ManagerContext& ctx) {
    return ManagerEdit(ctx, /*permissions=*/false);
}

WebItem* BuildManagerPermissionsPage(ManagerContext& ctx) {
    return ManagerEdit(ctx, /*permissions=*/true);
}

WebItem* BuildUserXml(ManagerContext& ctx) {
    return new XMLUserSearchSQL(ctx, /*withAgents=*/false);
}

WebItem* BuildAgentXml(ManagerContext& ctx) {
    return new XMLUserSearchSQL(ctx, /*withAgents=*/true);
}

template <class Page>
WebItem* Build(ManagerContext& ctx) {
    return new Page(ctx);
}

// A posted "Update" shows the list again, whoever sent it.
bool IsUpdate(ManagerContext& ctx) {
    return strcmp(ctx.ArgumentText("submit"), "Update") == 0;
}

// The menu goes by the rights that the session keeps: the page itself asks the database.
bool OffersConfiguration(ManagerContext& ctx) {
    return ctx.HasUserRight(32) && !ctx.HasUserRight(8);
}

// The order counts: the first row that matches answers. "homepage" and "reporter." are never
// reached, since the dispatcher turns these names into "callreport".
constexpr PageRow kPages[] = {
    {"homepage", Match::kExact, {}, BuildCallReport, nullptr},
    {"callreport", Match::kExact, {16, CheckReportCategory}, BuildCallReport, "Reports"},
    {"calllogdrill", Match::kExact, {16, CheckReportCategory}, BuildCallReport, nullptr},
    {"mediadrill", Match::kExact, {16, CheckReportCategory}, BuildCallReport, nullptr},
    {"csvreport", Match::kExact, {16}, BuildCsvReport, nullptr},
    {"pricerecord", Match::kExact, {16}, BuildPriceRecord, nullptr},
    {"autorespond2", Match::kExact, {}, Build<ReportValueSuggestions>, nullptr},
    {"autorespond", Match::kExact, {}, Build<ReportEntitySuggestions>, nullptr},
    {"manager.edit", Match::kExact, {}, BuildManagerEdit, nullptr},
    {"manager.permissions", Match::kExact, {}, BuildManagerPermissionsPage, nullptr},
    {"user.search",
     Match::kExact,
     {.needs = 1, .unless = IsUpdate},
     WebXMLSearch,
     "Telephone users"},
    {"xml.user.search", Match::kExact, {}, BuildUserXml, nullptr},
    {"xml.user.search.agent.add", Match::kExact, {}, BuildAgentXml, nullptr},
    {"manager.search",
     Match::kExact,
     {.needs = 4, .refusal = kNoAccessRights},
     BuildManagerSearch,
     "Portal users"},
    {"xml.manager.search", Match::kExact, {}, Build<XMLManagerSearch>, nullptr},
    {"fr.sla", Match::kExact, {}, BuildMediaSLAs, "Media SLAs", OffersConfiguration},
    {"fr.sla.add", Match::kExact, {}, BuildMediaSLAAdd, nullptr},
    {"fr.sla.edit", Match::kExact, {}, BuildMediaSLAEdit, nullptr},
    {"tabular", Match::kExact, {.refusedBy = 8, .needs = 32}, BuildTabularIndex, "Lists and forms"},
    {"setting.password",
     Match::kExact,
     {},
     Build<CustomerUserPassword>,
     "Password",
     HasPasswordFile},
    {"manager.logout", Match::kExact, {}, BuildLogout, "Sign out"},
    {"pdf", Match::kExact, {}, BuildPdf, nullptr},
    {"jsonchart", Match::kExact, {}, BuildJsonChart, nullptr},
    {"reporter.", Match::kPrefix, {}, BuildCallReport, nullptr},
};

bool Matches(const PageRow& row, const char* name) {
    if (row.match == Match::kExact) return strcmp(row.name, name) == 0;
    return strncmp(row.name, name, strlen(row.name)) == 0;
}

bool IsRefused(const Guard& guard, ManagerContext& ctx) {
    if (guard.refusedBy != kNoRight && CheckSecurityLevel(ctx, guard.refusedBy)) return true;
    const bool exempt = guard.unless != nullptr && guard.unless(ctx);
    if (guard.needs != kNoRight && !exempt && !CheckSecurityLevel(ctx, guard.needs)) return true;
    return guard.allows != nullptr && !guard.allows(ctx);
}

}  // namespace

std::unique_ptr<WebItem> BuildPage(ManagerContext& ctx, const char* name) {
    for (const PageRow& row : kPages) {
        if (!Matches(row, name)) continue;
        WebItem* page = IsRefused(row.guard, ctx) ? MessagePage(ctx, "No access", row.guard.refusal)
                                                  : row.build(ctx);
        return std::unique_ptr<WebItem>(page);
    }
    return nullptr;
}

std::unique_ptr<WebItem> BuildDefinedPage(ManagerContext& ctx, const char* name) {
    return BuildTabularReport(ctx, name);
}

void FillMenu(ManagerContext& ctx, const char* name) {
    ctx.menu.clear();
    for (const PageRow& row : kPages) {
        if (row.caption == nullptr) continue;
        // The rights kept in the session are enough here: the page itself asks the database.
        if (row.guard.refusedBy != kNoRight && ctx.HasUserRight(row.guard.refusedBy)) continue;
        if (row.guard.needs != kNoRight && !ctx.HasUserRight(row.guard.needs)) continue;
        if (row.offered != nullptr && !row.offered(ctx)) continue;
        ctx.menu.push_back({row.caption, row.name, strcmp(row.name, name) == 0});
    }
}
