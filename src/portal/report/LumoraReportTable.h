// LumoraReportTable.h: the result of a report as a table, with its graph above and notes below.
#pragma once

#include <memory>
#include <string>

#include "cgiFramework/WebPage.h"
#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/ReportSpool.h"

class LumoraReportGraph;
class PortalContext;
class ReportLinks;
class SQLSession;
struct ReportDefinition;
struct ReportView;

// What a run of a report reads its result with. All of it is the caller's.
struct ReportRun {
    PortalContext& ctx;
    const ReportDefinition& definition;
    const LumoraReportSQLCol& columns;
    const ReportView& view;
    const std::string& query;  // the finished statement
};

// The table is kept until it is rendered, which needs the database no more.
class LumoraReportTable : public WebItem {
  public:
    // Runs the query and takes the whole result; the context's connection must have no unfinished
    // one. It never throws: a failure, before or amid the rows, is logged and stands in place of
    // the rest. Null `links`: nothing on it leads anywhere, as on paper.
    LumoraReportTable(const ReportRun& run, const ReportLinks* links);
    ~LumoraReportTable() override;
    void Render(WebContext& ctx, WebRender* out) override;

  private:
    void WriteResult(const ReportRun& run, const ReportLinks* links);
    void WriteNotes(const ReportRun& run, const std::string& counts, double seconds,
                    uint64_t rowsRead);

    ReportSpool spool_;
    std::unique_ptr<LumoraReportGraph> graph_;  // null: the rows have no shape to show
    bool forPaper_;
    bool graphOnly_;
};
