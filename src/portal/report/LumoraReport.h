// LumoraReport.h: one run of a report: what it is about, and its result.
#pragma once

#include "cgiFramework/WebPage.h"

class LumoraReportFilter;
class PortalContext;
struct ReportDefinition;

// The constructor fills the report's query with the criteria and adds the header lines and the
// result, which runs the query when it is rendered, or, in the background, at once. Throws the
// server's message, or a text that says what is wrong with the report's definition.
class LumoraReport : public WebItem {
  public:
    LumoraReport(PortalContext& ctx, const ReportDefinition& definition,
                 const LumoraReportFilter& filter);
};
