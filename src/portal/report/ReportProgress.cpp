#include "portal/report/ReportProgress.h"

#include <string>

#include "cgiFramework/WebForm.h"
#include "common/Html.h"
#include "common/Log.h"
#include "portal/background/BackgroundJob.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportCell.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr int kFeedMs = 1000;
constexpr int kReloadSeconds = 2;
constexpr char kNotRunning[] = "The report was not running any more.";

UString ProgressOf(const BackgroundJob& job) {
    int64_t seconds = 0;
    uint64_t rows = 0;
    job.ReadProgress(seconds, rows);
    return ProgressText(seconds, rows);
}

// The page that shows this job, whether it still runs or has its result. It holds the criteria for
// the form that takes its place once the run is over.
UString JobUrl(PortalContext& ctx, const char* report, const BackgroundJob& job,
               const LumoraReportFilter& filter) {
    UString url = ctx.GetPageURL(nullptr);
    url += "&report=";
    AppendSafe(url, report);
    UString id;
    id.Format("&query_id=%d", job.pid());
    url += id;
    filter.AppendArguments(url);
    return url;
}

void AddForm(WebItem& page, const char* report, const BackgroundJob& job, const UString& url) {
    UString css;
    css.Format(
        "id=\"progressForm\" data-url=\"%s\" style=\"text-align:center;width:80%%;height:100px;"
        "background:lightyellow;border:darkgray 1px solid\"",
        HtmlAttr(url.c_str()).c_str());
    WebForm& form =
        page.Adopt(new WebForm("progressForm", "post", HtmlAttr(url.c_str()).c_str(), css.c_str()));
    // People who do not see are told by the line below it.
    form.Adopt(new WebDiv("aria-hidden=\"true\""))
        .Add(new WebValue("<h3>Generating Report</h3><img src=\"Images/Norvane/progress1.gif\"/>"));
    form.Add(new WebValue("<p id=\"progressText\" role=\"status\">%s</p>\n",
                          HtmlText(ProgressOf(job).c_str()).c_str()));
    form.Add(new WebField("report", "hidden", HtmlAttr(report).c_str(), ""));
    form.Add(new WebField("query_id", "hidden", std::to_string(job.pid()).c_str(), ""));
    form.Add(new WebField("submit", "submit", "Cancel Report", "class=\"CancelButton\""));
}

}  // namespace

UString ProgressText(int64_t seconds, uint64_t rows) {
    std::string text = GroupedNumber(static_cast<uint64_t>(seconds < 0 ? 0 : seconds));
    text += seconds == 1 ? " second so far" : " seconds so far";
    if (rows > 0) text += ", " + GroupedNumber(rows) + (rows == 1 ? " row" : " rows");
    return UString(text.c_str());
}

void AddProgress(PortalContext& ctx, StandardPage& page, const char* report,
                 const BackgroundJob& job, const LumoraReportFilter& filter) {
    const UString url = JobUrl(ctx, report, job, filter);
    UString refresh;
    refresh.Format(
        "<noscript><meta http-equiv=\"refresh\" content=\"%d;url=%s\"></noscript>\n"
        "<script src=\"js/progress.js\" defer></script>\n",
        kReloadSeconds, HtmlAttr(url.c_str()).c_str());
    page.header += refresh;
    AddForm(page, report, job, url);
}

bool IsProgressAsked(const PortalContext& ctx) {
    return *ctx.ArgumentText("query_id") != '\0' && *ctx.ArgumentText("progress") != '\0';
}

ReportProgressFeed::ReportProgressFeed(PortalContext& ctx) : JSONPage(/*asHtml=*/false) {
    ctx.LeaveSession();
    const char* state = "ended";
    const auto job = BackgroundJob::Find(ctx, ctx.ArgumentText("query_id"));
    if (job != nullptr) {
        switch (job->Wait(kFeedMs)) {
            case BackgroundJob::kReady:
                job->GiveBack();  // the page that the script asks for next takes it
                state = "ready";
                break;
            case BackgroundJob::kRunning:
                state = "running";
                Add(new JSONPair("text", ProgressOf(*job), /*raw=*/false));
                break;
            case BackgroundJob::kEnded:
                break;
        }
    }
    Add(new JSONPair("state", state, /*raw=*/false));
}

const char* CancelReport(PortalContext& ctx) {
    const char* queryId = ctx.ArgumentText("query_id");
    if (*queryId == '\0') {
        LogError("Cancel Report: query_id not set");
        return kNotRunning;
    }
    const auto job = BackgroundJob::Find(ctx, queryId);
    if (job == nullptr || !job->Cancel()) {
        LogError("failed to signal %d", atoi(queryId));
        return kNotRunning;
    }
    LogError("SIGUSR1 -> %d", job->pid());
    return "The report was cancelled.";
}
