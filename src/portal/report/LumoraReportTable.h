// LumoraReportTable.h: the result of a report as a table, streamed from the server to the reader.
#pragma once

#include <memory>
#include <string>

#include "cgiFramework/WebPage.h"
#include "portal/report/LumoraReportSQLCol.h"

class PortalContext;
class ReportSpool;

// Runs its query when it is rendered, and hands each row on as it comes, or before that, when it is
// told to. It never throws: a failure, before or amid the rows, is logged and shown in place of the
// rest.
class LumoraReportTable : public WebItem {
  public:
    // `query` is the finished statement, `reportName` what the log calls the report. The context's
    // connection must have no unfinished result while this renders or runs.
    LumoraReportTable(PortalContext& ctx, const char* reportName, std::string query,
                      std::unique_ptr<const LumoraReportSQLCol> columns);
    ~LumoraReportTable() override;
    // Runs the query now and keeps its table for Render, which needs the database no more.
    void Run(WebContext& ctx);
    void Render(WebContext& ctx, WebRender* out) override;

  private:
    void WriteResult(WebContext& ctx, WebRender& out);

    PortalContext& portal_;
    UString reportName_;
    std::string query_;
    std::unique_ptr<const LumoraReportSQLCol> columns_;
    std::unique_ptr<ReportSpool> spool_;  // the table, once the query ran
};
