// TabularReport.h: the pages that files of the report folder define (cgiFramework/Report.h).
#pragma once

#include <memory>

#include "cgiFramework/WebPage.h"

class ManagerContext;
class Report;

// The page that a definition of this name makes, the last one when several share the name; null
// when there is none. A caller whom the definition does not let in gets a refusal. Throws the
// server's message.
std::unique_ptr<WebItem> BuildTabularReport(ManagerContext& ctx, const char* name);

// "tabular": what the caller may open of all that. The caller owns it.
WebItem* BuildTabularIndex(ManagerContext& ctx);

// The pages of the three types, "Table", "Form" and "pdf". The caller owns them and has seen to the
// rights.
WebItem* TWReportPage(ManagerContext& ctx, const Report& report);
WebItem* TWReportDetailPage(ManagerContext& ctx, const Report& report);
WebItem* ReportPDFPage(ManagerContext& ctx, const Report& report);
