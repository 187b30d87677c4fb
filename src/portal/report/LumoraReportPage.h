// LumoraReportPage.h: the entry to all call reports: catalogue, criteria form and result.
#pragma once

#include <memory>
#include <vector>

#include "portal/theme/StandardPage.h"

class BackgroundJob;
class FilePage;
class LumoraReport;
class LumoraReportFilter;
class LumoraReportQuery;
class PortalContext;
struct FilterProblem;
struct ReportDefinition;

// As "calllogdrill" or "mediadrill" it lists the calls or messages behind a figure of a report.
// Otherwise, without the argument "report", it lists the catalogue. With it, it shows that report's
// criteria form, filled from the arguments, or from the session when "change" is given; and with
// "submit" too it runs the report. Criteria that cannot be used bring the form back with a message
// beside each, and no query runs.
//
// A run is made by another process. This page hands that one's answer over when it is ready within
// about two seconds, or whenever it is when "wait" is 1; else it shows the progress, and so does
// every request with the run's "query_id", until one hands the answer over. "submit" with "Cancel
// Report" ends the run.
class LumoraReportPage : public StandardPage {
  public:
    // Throws the server's message where there is nothing else to show. In the process that renders
    // in the background (`ctx.background`) it returns with the whole result.
    explicit LumoraReportPage(PortalContext& ctx);
    ~LumoraReportPage() override;
    void Render(WebContext& ctx, WebRender* out) override;

    // The result that this process made, as the file or for paper, where the request asked for
    // that ("csv" or "xlsx", "print"); else null. Takes it out of this page.
    std::unique_ptr<FilePage> GetCSVData();
    std::unique_ptr<WebItem> GetPrintPage(PortalContext& ctx);

  private:
    // My Reports and the quick reports, as the request asks.
    void ChangeLists(PortalContext& ctx);
    void AddCatalogue(PortalContext& ctx);
    void AddReport(PortalContext& ctx, const char* pagename);
    void AddDrillList(PortalContext& ctx, const char* pagename);
    void AddForm(PortalContext& ctx, const ReportDefinition& definition, LumoraReportFilter& filter,
                 const std::vector<FilterProblem>& problems);
    void RunReport(PortalContext& ctx, const ReportDefinition& definition,
                   const LumoraReportFilter& filter);
    void StartRun(PortalContext& ctx, const ReportDefinition& definition,
                  const LumoraReportFilter& filter);
    bool AsksBefore(PortalContext& ctx, const ReportDefinition& definition,
                    const LumoraReportFilter& filter, const LumoraReportQuery& query);
    void RunQuery(PortalContext& ctx, const ReportDefinition& definition,
                  const LumoraReportFilter& filter, const LumoraReportQuery& query);
    void AddResultHead(PortalContext& ctx, const ReportDefinition& definition,
                       const LumoraReportFilter& filter);
    void AddFailure(const ReportDefinition& definition, const char* message);
    void FollowRun(PortalContext& ctx, const ReportDefinition& definition,
                   LumoraReportFilter& filter);
    void CancelRun(PortalContext& ctx, const ReportDefinition& definition,
                   LumoraReportFilter& filter);
    bool AwaitRun(PortalContext& ctx, const ReportDefinition& definition,
                  const LumoraReportFilter& filter, std::unique_ptr<BackgroundJob> job,
                  int milliseconds);

    UString back_;                          // to the report whose figure led to this list
    UString saved_;                         // what became of the wish to keep the criteria
    std::unique_ptr<BackgroundJob> ready_;  // its answer is this page's
    LumoraReport* report_ = nullptr;        // among the items, once it ran here
};
