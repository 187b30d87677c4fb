// ReportFile.h: a report's result as a file that the browser saves.
#pragma once

#include <string>
#include <vector>

#include "cgiFramework/FilePage.h"
#include "portal/report/LumoraReportTable.h"
#include "portal/report/ReportCriteria.h"
#include "portal/report/ReportSpool.h"

// The whole result is kept before anything of it is sent, so that a failure can still be told on a
// page.
class ReportFile : public FilePage {
  public:
    // Runs the query and takes its rows into the form that the view asks for: a text of
    // comma-separated values, or a workbook. `criteria` go into the workbook, and into the text
    // when the view asks for them. Throws the server's message, or what else went wrong.
    ReportFile(const ReportRun& run, std::vector<ReportCriterion> criteria);

  protected:
    void RenderContent(WebRender& out) override;

  private:
    void WriteCsv(const ReportRun& run, const std::vector<ReportCriterion>& criteria);
    void WriteXlsx(const ReportRun& run, std::vector<ReportCriterion> criteria);
    void SetName(const ReportRun& run, const char* extension);

    ReportSpool spool_;
    bool hasMark_ = false;  // the text says in front that it is UTF-8
};
