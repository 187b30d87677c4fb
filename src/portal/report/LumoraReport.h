// LumoraReport.h: one run of a report: what it is about, and its result.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cgiFramework/WebPage.h"
#include "portal/report/ReportCriteria.h"
#include "portal/report/ReportView.h"

class FilePage;
class LumoraReportFilter;
class LumoraReportQuery;
class PortalContext;
class ReportFile;
struct ReportDefinition;
struct ReportRun;

class LumoraReport : public WebItem {
  public:
    // Runs the query that was made of the definition and the filter, and keeps the result, so that
    // rendering needs the database no more. How the result is shown is the request's to say
    // (ReportView.h). Throws the server's message, or a text that says what is wrong with the
    // report's definition; a query that fails is told in place of the result.
    LumoraReport(PortalContext& ctx, const ReportDefinition& definition,
                 const LumoraReportFilter& filter, const LumoraReportQuery& query);
    ~LumoraReport() override;

    const ReportView& view() const { return view_; }
    // How many columns the result has.
    int columnCount() const { return columnCount_; }
    // The result as a file, when the request asked for one; null when it did not, or the query
    // failed. Once only.
    std::unique_ptr<FilePage> TakeFile();

  private:
    void AddHeader(const UString& name, const LumoraReportQuery& query, const UString& filteredOn,
                   const std::string& row);
    void AddLinks(const char* here);
    void MakeFile(const ReportRun& run);

    ReportView view_;
    std::vector<ReportCriterion> criteria_;  // the first is the report's name
    int columnCount_ = 0;
    std::unique_ptr<ReportFile> file_;
};
