// ReportTableWriter.h: writes the rows of a report as an HTML table, one after the other.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/ReportColumns.h"
#include "portal/report/ReportLinks.h"
#include "portal/report/ReportRowReader.h"
#include "portal/report/ReportSeries.h"
#include "portal/report/ReportTotals.h"
#include "portal/report/ReportView.h"

class WebRender;

// What a table shows besides its rows.
struct ReportTableLayout {
    ReportView view;
    const ReportLinks* links = nullptr;  // null: nothing leads anywhere, as on paper
    UString seriesTitle;
    std::vector<UString> seriesKeys;
};

// Writes one page of the rows; the totals are those of all rows. Neighbouring rows that form a
// series stand below its heading and have totals of their own.
//
// No row is kept: each is written into one block of text that goes to the sink whenever it is
// full. Nothing is written before the first row.
class ReportTableWriter : public ReportRowReader {
  public:
    // `names` are the result's columns, of which the definition chooses and orders those shown. A
    // definition that does not fit the result throws a text that says why. The definition, the
    // layout's links and the sink must outlive the writer.
    ReportTableWriter(const LumoraReportSQLCol& columns, const std::vector<std::string_view>& names,
                      WebRender& out, const ReportTableLayout& layout = {});
    ReportTableWriter(const ReportTableWriter&) = delete;
    ReportTableWriter& operator=(const ReportTableWriter&) = delete;

    void AddRow(const std::vector<std::string_view>& row) override;
    // Ends the table: the totals, the number of rows and the way to other pages. Without a row
    // nothing is written.
    void Finish();
    // Ends a table that breaks off, so that what follows stands outside of it.
    void BreakOff();

    uint64_t rows() const { return rows_; }
    const ReportTotals& totals() const { return totals_; }

  private:
    struct Cell {
        int field;  // of the result
        ReportStyle style;
        std::string open;  // the cell's opening tag
        std::string next;  // the same, behind the end of the cell before
        ReportCellLink link;
    };

    std::vector<Cell> MakeCells(const std::vector<std::string_view>& names) const;
    void Open();
    void AppendGroupTitles();
    void AppendHeading(const LumoraSQLColumnDescription& column, ReportStyle style);
    void AppendRow(const std::vector<std::string_view>& row);
    void AppendSeriesHeading();
    void EndSeries();
    void AppendTotals(const ReportTotals& totals, const char* rowClass);
    void AppendCount();
    void AppendPager();
    void AppendPagerLink(const std::string& url, const std::string& caption,
                         const char* attributes);
    void Send();

    const LumoraReportSQLCol& columns_;
    const ReportTableLayout layout_;
    const std::vector<Cell> cells_;  // one a column of the definition
    ReportTotals totals_;
    ReportSeries series_;
    ReportTotals seriesTotals_;
    WebRender& out_;
    std::string block_;
    const uint64_t first_;  // of the page's rows
    const uint64_t most_;
    uint64_t rows_ = 0;
    uint64_t shown_ = 0;
    bool headingDue_ = false;   // the present series' rows have none on this page yet
    bool seriesShown_ = false;  // the latest row stands on this page
};
