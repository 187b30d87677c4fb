#include "portal/PageTable.h"

#include <cstring>

#include "portal/Dispatch.h"
#include "portal/context/ManagerContext.h"
#include "portal/report/LumoraReportPage.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr char kNoRights[] = "Sorry you do not have rights for this";
constexpr int kNoRight = 0;

enum class Match { kExact, kPrefix };

// Which right, a row of CustomerUserRight, opens or closes a page.
struct Guard {
    int refusedBy = kNoRight;                       // refused when the user holds it
    bool (*allows)(ManagerContext& ctx) = nullptr;  // a further condition, or none
};

struct PageRow {
    const char* name;
    Match match;
    Guard guard;
    WebPage* (*build)(ManagerContext& ctx);
    const char* caption;  // its entry in the menu, or null for none
};

WebPage* BuildCallReport(ManagerContext& ctx) {
    ctx.GetWebArgument("print", WebArgument::Any)->type_ = WebArgument::Global;
    ctx.GetWebArgument("csv", WebArgument::Any)->type_ = WebArgument::Global;
    ctx.GetWebArgument("wallboard", WebArgument::Any)->type_ = WebArgument::Global;
    return new LumoraReportPage(ctx);
}

WebPage* BuildLogout(ManagerContext& ctx) {
    ctx.DeleteSession();
    ctx.client_redirect = "logout.cgi";
    return MessagePage(ctx, "Sign out", "You are being signed out.");
}

// The order counts: the first row that matches answers. "homepage" and "reporter." are never
// reached, since the dispatcher turns these names into "callreport".
constexpr PageRow kPages[] = {
    {"homepage", Match::kExact, {}, BuildCallReport, nullptr},
    {"callreport", Match::kExact, {16, CheckReportCategory}, BuildCallReport, "Reports"},
    {"manager.logout", Match::kExact, {}, BuildLogout, "Sign out"},
    {"reporter.", Match::kPrefix, {}, BuildCallReport, nullptr},
};

bool Matches(const PageRow& row, const char* name) {
    if (row.match == Match::kExact) return strcmp(row.name, name) == 0;
    return strncmp(row.name, name, strlen(row.name)) == 0;
}

bool IsRefused(const Guard& guard, ManagerContext& ctx) {
    if (guard.refusedBy != kNoRight && CheckSecurityLevel(ctx, guard.refusedBy)) return true;
    return guard.allows != nullptr && !guard.allows(ctx);
}

}  // namespace

std::unique_ptr<WebPage> BuildPage(ManagerContext& ctx, const char* name) {
    for (const PageRow& row : kPages) {
        if (!Matches(row, name)) continue;
        WebPage* page =
            IsRefused(row.guard, ctx) ? MessagePage(ctx, "No access", kNoRights) : row.build(ctx);
        return std::unique_ptr<WebPage>(page);
    }
    return nullptr;
}

void FillMenu(ManagerContext& ctx, const char* name) {
    ctx.menu.clear();
    for (const PageRow& row : kPages) {
        if (row.caption == nullptr) continue;
        // The rights kept in the session are enough here: the page itself asks the database.
        if (row.guard.refusedBy != kNoRight && ctx.HasUserRight(row.guard.refusedBy)) continue;
        ctx.menu.push_back({row.caption, row.name, strcmp(row.name, name) == 0});
    }
}
