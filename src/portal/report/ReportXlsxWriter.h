// ReportXlsxWriter.h: writes the rows of a report into a workbook whose cells have types.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "portal/report/ReportColumns.h"
#include "portal/report/ReportRowReader.h"
#include "xlsx/XlsxModule.h"

struct ReportCriterion;

// Texts stay as they are, with leading zeros and signs; figures, durations, money, percentages and
// dates are numbers that a spreadsheet can go on with.
class ReportXlsxWriter : public ReportRowReader {
  public:
    // Writes into `path`, and what the workbook needs meanwhile into the folder. Throws a text when
    // the writer is missing or cannot begin.
    ReportXlsxWriter(std::vector<ReportFileColumn> columns, const char* path,
                     const char* scratchFolder, const char* title, const char* timeZone);
    ~ReportXlsxWriter() override;
    ReportXlsxWriter(const ReportXlsxWriter&) = delete;
    ReportXlsxWriter& operator=(const ReportXlsxWriter&) = delete;

    // Throws a text when the row cannot be written.
    void AddRow(const std::vector<std::string_view>& row) override;
    // Ends the workbook with the notes on a sheet of their own. Throws a text when it cannot.
    void Finish(const std::vector<ReportCriterion>& notes);

  private:
    [[noreturn]] void Fail() const;

    const LumoraXlsx& module_;
    const std::vector<ReportFileColumn> columns_;
    std::vector<XlsxModuleCell> cells_;
    std::vector<std::string> texts_;  // behind the cells
    void* book_;
};

// The cell of a raw value; `text` keeps what it refers to. A value that does not suit its style is
// a text.
XlsxModuleCell MakeXlsxCell(ReportStyle style, std::string_view raw, std::string& text);
