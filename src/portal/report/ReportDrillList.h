// ReportDrillList.h: the list of calls, or messages, that a figure of a report leads to.
#pragma once

#include <memory>

#include "common/UStringX.h"

class LumoraReportFilter;
class PortalContext;
struct ReportDefinition;

// Is it "calllogdrill" or "mediadrill"?
bool IsDrillPage(const char* pagename);

// A report that the catalogue holds for these pages alone: it cannot run without the figure.
bool IsDrillList(const ReportDefinition& definition);

// The report that shows the list: the catalogue's hidden report of the page's name, its template
// filled as the arguments say (ReportDrill.h). It bears the page name and the name of the report
// that was left, the argument "parent", whose rows the form has and whose category counts; the
// filter's flags are that one's. `back` becomes the address that runs that one again.
// Throws the server's message, or a text that says what is wrong with the link.
std::unique_ptr<ReportDefinition> LoadDrillList(PortalContext& ctx, const char* pagename,
                                                LumoraReportFilter& filter, UString& back);
