// ReportShortcuts.h: pages that are a run of a report under a name of their own. Each completes the
// request's arguments, so that the report page answers with the report's CSV.
#pragma once

class LumoraReportFilter;
class PortalContext;
struct ReportDefinition;

// Keeps in the session what was run, for AskForCsv.
void RememberRun(PortalContext& ctx, const ReportDefinition& definition,
                 const LumoraReportFilter& filter);

// "csvreport": the report and criteria of the request, or, where it names no report, those of the
// session's last run. False when there was none.
bool AskForCsv(PortalContext& ctx);

// "pricerecord": the report of that name with the criteria of the request, last month where it
// names no period.
void AskForPriceRecord(PortalContext& ctx);
