// ReportTableWriter.h: writes the rows of a report as an HTML table, one after the other.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/ReportCell.h"
#include "portal/report/ReportTotals.h"

class WebRender;

// No row is kept: each is written into one block of text that goes to the sink whenever it is
// full. Nothing is written before the first row.
class ReportTableWriter {
  public:
    // `names` are the result's columns, of which the definition chooses and orders those shown. A
    // definition that does not fit the result throws a text that says why. The definition and the
    // sink must outlive the writer.
    ReportTableWriter(const LumoraReportSQLCol& columns, const std::vector<std::string_view>& names,
                      WebRender& out);
    ReportTableWriter(const ReportTableWriter&) = delete;
    ReportTableWriter& operator=(const ReportTableWriter&) = delete;

    // Takes a row in the result's order; a null value is an empty view.
    void AddRow(const std::vector<std::string_view>& row);
    // Ends the table: the totals and the number of rows. Without a row nothing is written.
    void Finish();
    // Ends a table that breaks off, so that what follows stands outside of it.
    void BreakOff();

    uint64_t rows() const { return rows_; }

  private:
    struct Cell {
        int field;  // of the result
        ReportStyle style;
        std::string open;  // the cell's opening tag
    };

    static std::vector<Cell> MatchCells(const LumoraReportSQLCol& columns,
                                        const std::vector<std::string_view>& names);
    void Open();
    void AppendGroupTitles();
    void AppendTotals();
    void Send();

    const LumoraReportSQLCol& columns_;
    const std::vector<Cell> cells_;  // one a column of the definition
    ReportTotals totals_;
    WebRender& out_;
    std::string block_;
    uint64_t rows_ = 0;
};
