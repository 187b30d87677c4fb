#include "portal/report/LumoraReportPage.h"

#include <memory>
#include <string>

#include "common/Html.h"
#include "common/Log.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReport.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportCatalogue.h"
#include "portal/report/ReportDefinition.h"
#include "portal/report/ReportMessage.h"

namespace {

constexpr char kCostDefaultsSql[] =
    "SELECT AttribName, AttribValue FROM CustomerAttribute WHERE CustomerId = %s AND "
    "AttribName IN ('markup','vatrate')";
enum { kAttribName, kAttribValue };

bool IsGiven(const WebContext& ctx, const char* name) {
    const WebArgument* argument = ctx.FindWebArgument(name);
    return argument != nullptr && !argument->IsEmpty();
}

// The customer's uplift and VAT stand in for those that the request does not name; one that it
// names as empty is none.
void ApplyCostDefaults(PortalContext& ctx, LumoraReportFilter& filter) {
    const bool needsMarkup = filter.markup.IsEmpty() && !ctx.HasWebArgument("markup");
    const bool needsVatRate = filter.vatrate.IsEmpty() && !ctx.HasWebArgument("vatrate");
    if (!needsMarkup && !needsVatRate) return;
    SQLSession db(ctx.GetSQLSession());
    // The id was read as a number, so its text needs no quotes.
    db.Query(SqlText(kCostDefaultsSql, SqlFragment(std::to_string(ctx.customerId))));
    while (db.NextRow()) {
        const std::string_view name = db.Column(kAttribName);
        if (needsMarkup && name == "markup") filter.markup = db.Column(kAttribValue);
        if (needsVatRate && name == "vatrate") filter.vatrate = db.Column(kAttribValue);
    }
}

void AddAction(WebItem& actions, const UString& url, const char* caption) {
    UString href;
    href.Format("href=\"%s\"", HtmlAttr(url.c_str()).c_str());
    actions.Adopt(new WebLink(href.c_str())).Add(new WebValue("%s", caption));
}

// The way back: to the catalogue, and, for a result, to the form with its criteria.
void AddActions(PortalContext& ctx, WebItem& page, const char* changePagename) {
    UString url = ctx.GetURL("pagename=callreport");
    WebItem& actions = page.Adopt(new WebDiv("class=\"reportActions\""));
    AddAction(actions, url, "All reports");
    if (changePagename == nullptr) return;
    url += "&report=";
    url.AppendSafe(changePagename);
    url += "&change=1";
    actions.Add(new WebValue(" "));
    AddAction(actions, url, "Change criteria");
}

}  // namespace

LumoraReportPage::LumoraReportPage(PortalContext& ctx) : StandardPage(ctx) {
    if (IsGiven(ctx, "report"))
        AddReport(ctx, ctx.FindWebArgument("report")->Text());
    else
        AddCatalogue(ctx);
}

void LumoraReportPage::AddCatalogue(PortalContext& ctx) {
    title = "Reports";
    Add(new ReportCatalogue(ctx));
}

void LumoraReportPage::AddReport(PortalContext& ctx, const char* pagename) {
    const bool submitted = IsGiven(ctx, "submit");
    LumoraReportFilter filter(ctx, /*fromSession=*/!submitted && IsGiven(ctx, "change"));
    const std::unique_ptr<ReportDefinition> definition =
        ReportDefinition::Load(ctx, pagename, filter);
    if (definition == nullptr) {
        title = "Reports";
        LogError("LumoraReportPage: there is no report %s (contact %d)", pagename, ctx.contactId);
        AddActions(ctx, *this, nullptr);
        Add(new ReportWarning("This report does not exist."));
        return;
    }
    if (!IsCategoryAllowed(ctx.reportMask.c_str(), definition->category)) {
        title = definition->name;
        Add(new ReportWarning("No permission to run this category of reports."));
        return;
    }
    ApplyCostDefaults(ctx, filter);
    // A form that nobody has filled in yet has nothing to be told.
    const std::vector<FilterProblem> problems =
        submitted ? filter.Check() : std::vector<FilterProblem>();
    if (submitted && problems.empty())
        AddResult(ctx, *definition, filter);
    else
        AddForm(ctx, *definition, filter, problems);
}

void LumoraReportPage::AddForm(PortalContext& ctx, const ReportDefinition& definition,
                               LumoraReportFilter& filter,
                               const std::vector<FilterProblem>& problems) {
    title = definition.name + " - Select Criteria";
    filter.report = definition.pagename;
    AddActions(ctx, *this, nullptr);
    Add(filter.filterForm(ctx, filter, problems));
}

void LumoraReportPage::AddResult(PortalContext& ctx, const ReportDefinition& definition,
                                 const LumoraReportFilter& filter) {
    title = definition.name + " - Report";
    filter.SaveToSession(ctx);
    AddActions(ctx, *this, definition.pagename.c_str());
    try {
        Add(new LumoraReport(ctx, definition, filter));
    } catch (const char* message) {
        LogError("Report %s: %s", definition.pagename.c_str(), message);
        Add(new ReportWarning(message));
    }
}
