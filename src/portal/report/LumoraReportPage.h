// LumoraReportPage.h: the entry to all call reports: catalogue, criteria form and result.
#pragma once

#include <vector>

#include "portal/theme/StandardPage.h"

class LumoraReportFilter;
class PortalContext;
struct FilterProblem;
struct ReportDefinition;

// Without the argument "report" it lists the catalogue. With it, it shows that report's criteria
// form, filled from the arguments, or from the session when "change" is given; and with "submit"
// too it runs the report. Criteria that cannot be used bring the form back with a message beside
// each, and no query runs.
class LumoraReportPage : public StandardPage {
  public:
    // Throws the server's message where there is nothing else to show.
    explicit LumoraReportPage(PortalContext& ctx);

  private:
    void AddCatalogue(PortalContext& ctx);
    void AddReport(PortalContext& ctx, const char* pagename);
    void AddForm(PortalContext& ctx, const ReportDefinition& definition, LumoraReportFilter& filter,
                 const std::vector<FilterProblem>& problems);
    void AddResult(PortalContext& ctx, const ReportDefinition& definition,
                   const LumoraReportFilter& filter);
};
