#include "portal/report/LumoraReportPage.h"

#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "cgiFramework/FilePage.h"
#include "cgiFramework/QueryTiming.h"
#include "cgiFramework/UrlArgument.h"
#include "common/Html.h"
#include "common/Log.h"
#include "portal/background/BackgroundJob.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReport.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/LumoraReportQuery.h"
#include "portal/report/LumoraSavedReportModule.h"
#include "portal/report/ReportCatalogue.h"
#include "portal/report/ReportDefinition.h"
#include "portal/report/ReportDrillList.h"
#include "portal/report/ReportEstimate.h"
#include "portal/report/ReportFavourites.h"
#include "portal/report/ReportMessage.h"
#include "portal/report/ReportPrintPage.h"
#include "portal/report/ReportProgress.h"
#include "portal/report/ReportShortcuts.h"

namespace {

constexpr char kCostDefaultsSql[] =
    "SELECT AttribName, AttribValue FROM CustomerAttribute WHERE CustomerId = %s AND "
    "AttribName IN ('markup','vatrate')";
enum { kAttribName, kAttribValue };

// How long a request waits for a result before it shows the progress, and how long one that follows
// a run.
constexpr int kFirstWaitMs = 2000;
constexpr int kFollowMs = 500;

// How a result is to be shown, besides what it is.
constexpr const char* kViewArguments[] = {"print",     "csv",      "xlsx", "sort",
                                          "dir",       "page",     "rows", "graphonly",
                                          "tableonly", "criteria", "wait"};

constexpr char kNoResult[] = "The report ended before it had a result. Please run it again.";

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

// The way back: to the catalogue, and, for a result, to the form with its criteria. The list behind
// a figure has the way `back` to its report, too.
void AddActions(PortalContext& ctx, WebItem& page, const char* changePagename = nullptr,
                const LumoraReportFilter* filter = nullptr, const UString& back = "") {
    UString url = ctx.GetURL("pagename=callreport");
    WebItem& actions = page.Adopt(new WebDiv("class=\"reportActions\""));
    AddAction(actions, url, "All reports");
    if (!back.IsEmpty()) {
        actions.Add(new WebValue(" "));
        AddAction(actions, back, "Back to the report");
    }
    if (changePagename == nullptr) return;
    url += "&report=";
    url.AppendSafe(changePagename);
    url += "&change=1";
    filter->AppendArguments(url);
    actions.Add(new WebValue(" "));
    AddAction(actions, url, "Change criteria");
}

bool IsWaitAsked(const WebContext& ctx) {
    return strcmp(ctx.ArgumentText("wait"), "1") == 0;
}

const char* TitleEnd(const ReportDefinition& definition) {
    return IsDrillPage(definition.page.c_str()) ? " - Call List" : " - Report";
}

bool IsCancel(const WebContext& ctx) {
    return strcmp(ctx.ArgumentText("submit"), "Cancel Report") == 0;
}

}  // namespace

LumoraReportPage::LumoraReportPage(PortalContext& ctx) : StandardPage(ctx) {
    const char* pagename = ctx.ArgumentText("pagename");
    if (IsDrillPage(pagename)) {
        AddDrillList(ctx, pagename);
        return;
    }
    ChangeLists(ctx);
    if (ctx.IsArgumentGiven("report"))
        AddReport(ctx, ctx.ArgumentText("report"));
    else
        AddCatalogue(ctx);
}

LumoraReportPage::~LumoraReportPage() = default;

void LumoraReportPage::Render(WebContext& ctx, WebRender* out) {
    if (ready_ != nullptr) {
        if (ready_->HandOver(*out)) return;
        Add(new ReportWarning(kNoResult));
    }
    StandardPage::Render(ctx, out);
}

std::unique_ptr<FilePage> LumoraReportPage::GetCSVData() {
    return report_ != nullptr ? report_->TakeFile() : nullptr;
}

std::unique_ptr<WebItem> LumoraReportPage::GetPrintPage(PortalContext& ctx) {
    if (report_ == nullptr || report_->view().form != ReportView::kPrint) return nullptr;
    contains.Unlink(report_);
    auto page = std::make_unique<ReportPrintPage>(ctx, std::exchange(report_, nullptr));
    page->title = title;
    return page;
}

void LumoraReportPage::ChangeLists(PortalContext& ctx) {
    // Going back in the history must not change anything again.
    for (const char* change : {"addmyreport", "removemyreport", "removeQReport"})
        if (ctx.IsArgumentGiven(change)) addToHistory = false;
    if (const char* told = ChangeFavourites(ctx)) Add(new ReportNotice(told));
    if (const char* told = RemoveQuickReport(ctx)) Add(new ReportNotice(told));
}

void LumoraReportPage::AddCatalogue(PortalContext& ctx) {
    title = CatalogueTitle(ctx);
    auto quick = std::make_unique<LumoraSavedReportModule>(ctx);
    WebItem& catalogue = Adopt(new WebDiv("class=\"catalogue\""));
    if (quick->any()) catalogue.Add(quick.release());
    catalogue.Add(new ReportCatalogue(ctx));
}

void LumoraReportPage::AddReport(PortalContext& ctx, const char* pagename) {
    const bool cancelled = IsCancel(ctx);
    const bool followed = !cancelled && ctx.IsArgumentGiven("query_id");
    const bool submitted = !cancelled && !followed && ctx.IsArgumentGiven("submit");
    const bool fromSession = cancelled || followed || ctx.IsArgumentGiven("change");
    LumoraReportFilter filter(ctx,
                              fromSession && !submitted && !LumoraReportFilter::IsInRequest(ctx));
    const std::unique_ptr<ReportDefinition> definition =
        ReportDefinition::Load(ctx, pagename, filter);
    if (definition == nullptr) {
        title = "Reports";
        LogError("LumoraReportPage: there is no report %s (contact %d)", pagename, ctx.contactId);
        AddActions(ctx, *this);
        Add(new ReportWarning("This report does not exist."));
        return;
    }
    if (!IsCategoryAllowed(ctx.reportMask.c_str(), definition->category)) {
        title = definition->name;
        Add(new ReportWarning("No permission to run this category of reports."));
        return;
    }
    if (IsDrillList(*definition)) {
        title = definition->name;
        AddActions(ctx, *this);
        Add(new ReportNotice(
            "This list holds the calls behind a figure: run a report, and choose one there."));
        return;
    }
    ApplyCostDefaults(ctx, filter);
    if (cancelled) return CancelRun(ctx, *definition, filter);
    if (followed) return FollowRun(ctx, *definition, filter);
    // A form that nobody has filled in yet has nothing to be told.
    const std::vector<FilterProblem> problems =
        submitted ? filter.Check() : std::vector<FilterProblem>();
    if (submitted && problems.empty())
        RunReport(ctx, *definition, filter);
    else
        AddForm(ctx, *definition, filter, problems);
}

void LumoraReportPage::AddDrillList(PortalContext& ctx, const char* pagename) {
    title = "Call List";
    LumoraReportFilter filter(ctx, /*fromSession=*/false);
    std::unique_ptr<ReportDefinition> list;
    try {
        list = LoadDrillList(ctx, pagename, filter, back_);
    } catch (const char* message) {
        LogError("%s: %s", pagename, message);
        AddActions(ctx, *this);
        Add(new ReportWarning(message));
        return;
    }
    title = list->name + TitleEnd(*list);
    if (!IsCategoryAllowed(ctx.reportMask.c_str(), list->category)) {
        Add(new ReportWarning("No permission to run this category of reports."));
        return;
    }
    if (IsCancel(ctx)) return CancelRun(ctx, *list, filter);
    if (ctx.IsArgumentGiven("query_id")) return FollowRun(ctx, *list, filter);
    const std::vector<FilterProblem> problems = filter.Check();
    if (problems.empty()) return StartRun(ctx, *list, filter);
    AddActions(ctx, *this, list->pagename.c_str(), &filter, back_);
    for (const FilterProblem& problem : problems)
        Add(new ReportWarning(problem.message.c_str()));
}

void LumoraReportPage::AddForm(PortalContext& ctx, const ReportDefinition& definition,
                               LumoraReportFilter& filter,
                               const std::vector<FilterProblem>& problems) {
    if (IsDrillPage(definition.page.c_str())) {
        // A list has no form: the criteria are those of the report that led to it.
        AddActions(ctx, *this, definition.pagename.c_str(), &filter);
        return;
    }
    title = definition.name + " - Select Criteria";
    filter.report = definition.pagename;
    if (filter.reportTitle.IsEmpty()) filter.reportTitle = definition.name;
    filter.SetSaveOption(true);
    AddActions(ctx, *this);
    Add(filter.filterForm(ctx, filter, problems));
}

void LumoraReportPage::RunReport(PortalContext& ctx, const ReportDefinition& definition,
                                 const LumoraReportFilter& filter) {
    filter.SaveToSession(ctx);
    RememberRun(ctx, definition, filter);
    saved_ = SaveQuickReport(ctx, definition, filter);
    StartRun(ctx, definition, filter);
}

// The query is made once, for the estimate and for the run.
void LumoraReportPage::StartRun(PortalContext& ctx, const ReportDefinition& definition,
                                const LumoraReportFilter& filter) {
    const char* benchmarkLog = ctx.GetSetting("benchmarklog");
    if (*benchmarkLog != '\0') OpenBenchmarkLog(benchmarkLog);
    std::optional<LumoraReportQuery> query;
    try {
        query.emplace(ctx, definition.query.c_str(), filter);
    } catch (const char* message) {
        AddResultHead(ctx, definition, filter);
        AddFailure(definition, message);
        return;
    }
    if (!AsksBefore(ctx, definition, filter, *query)) RunQuery(ctx, definition, filter, *query);
}

void LumoraReportPage::RunQuery(PortalContext& ctx, const ReportDefinition& definition,
                                const LumoraReportFilter& filter, const LumoraReportQuery& query) {
    // The session is written before the wait begins, so that nobody's changes meanwhile are lost.
    UpdateHistory(ctx);
    addToHistory = false;
    ctx.SaveSession();
    if (auto job = BackgroundJob::Start(ctx)) {
        const int wait = IsWaitAsked(ctx) ? BackgroundJob::kNoLimit : kFirstWaitMs;
        if (!AwaitRun(ctx, definition, filter, std::move(job), wait))
            Add(new ReportWarning(kNoResult));
        return;
    }
    AddResultHead(ctx, definition, filter);
    try {
        report_ = &Adopt(new LumoraReport(ctx, definition, filter, query));
    } catch (const char* message) {
        AddFailure(definition, message);
    }
}

// Whoever asks for a great deal is told first, whatever the answer is to be. The link that runs it
// all the same is the same request again.
bool LumoraReportPage::AsksBefore(PortalContext& ctx, const ReportDefinition& definition,
                                  const LumoraReportFilter& filter,
                                  const LumoraReportQuery& query) {
    const uint64_t limit = WarningLimit(ctx);
    if (limit == 0 || ctx.IsArgumentGiven("confirm")) return false;
    const uint64_t rows = EstimateRows(ctx, query);
    if (rows <= limit) return false;

    AddResultHead(ctx, definition, filter);
    const UString question = "This report would read a great deal: " + EstimateText(rows) +
                             ". A shorter period or fewer names take less.";
    Add(new ReportNotice(question.c_str()));
    UString url = RunUrl(ctx, definition, filter);
    std::string view;
    for (const char* name : kViewArguments)
        if (ctx.IsArgumentGiven(name)) AppendUrlArgument(view, name, ctx.ArgumentText(name));
    url += view.c_str();
    url += "&confirm=1";
    AddAction(Adopt(new WebDiv("class=\"reportActions\"")), url, "Run anyway");
    return true;
}

void LumoraReportPage::AddResultHead(PortalContext& ctx, const ReportDefinition& definition,
                                     const LumoraReportFilter& filter) {
    title = definition.name + TitleEnd(definition);
    AddActions(ctx, *this, definition.pagename.c_str(), &filter, back_);
    if (!saved_.IsEmpty()) Add(new ReportNotice(saved_.c_str()));
}

void LumoraReportPage::AddFailure(const ReportDefinition& definition, const char* message) {
    LogError("Report %s: %s", definition.pagename.c_str(), message);
    Add(new ReportWarning(message));
}

void LumoraReportPage::FollowRun(PortalContext& ctx, const ReportDefinition& definition,
                                 LumoraReportFilter& filter) {
    addToHistory = false;
    ctx.LeaveSession();
    auto job = BackgroundJob::Find(ctx, ctx.ArgumentText("query_id"));
    if (job != nullptr && AwaitRun(ctx, definition, filter, std::move(job), kFollowMs)) return;
    Add(new ReportNotice(
        "This run of the report is over: it was shown already, cancelled, or given up because "
        "nobody waited for it."));
    AddForm(ctx, definition, filter, {});
}

void LumoraReportPage::CancelRun(PortalContext& ctx, const ReportDefinition& definition,
                                 LumoraReportFilter& filter) {
    addToHistory = false;
    Add(new ReportNotice(CancelReport(ctx)));
    AddForm(ctx, definition, filter, {});
}

// Makes this page the job's answer, or its progress. False when the job has ended without one.
bool LumoraReportPage::AwaitRun(PortalContext& ctx, const ReportDefinition& definition,
                                const LumoraReportFilter& filter,
                                std::unique_ptr<BackgroundJob> job, int milliseconds) {
    title = definition.name + TitleEnd(definition);
    switch (job->Wait(milliseconds)) {
        case BackgroundJob::kReady:
            ready_ = std::move(job);
            return true;
        case BackgroundJob::kRunning:
            AddActions(ctx, *this);
            AddProgress(ctx, *this, definition.pagename.c_str(), *job, filter);
            return true;
        case BackgroundJob::kEnded:
            break;
    }
    return false;
}
