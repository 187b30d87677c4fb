// LumoraReportGraphBuilder.h: makes the graph of a report from its rows as they pass by.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "portal/report/LumoraReportGraph.h"
#include "portal/report/LumoraReportGraphData.h"
#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/ReportCell.h"
#include "portal/report/ReportRowReader.h"

class PortalContext;

// Kind, series and labels come from the words of the definition's `format` or, where it says
// nothing, from the columns and the rows:
//  - the labels are the first column that is no series' key; with a "label:" of sums, rows of the
//    same label add up;
//  - the series are the columns of style number and total type sum that share the group title of
//  the
//    first of them; without such columns, those of style time (with the axis "Minutes on Calls"),
//    money, and at last the first column of any numeric style;
//  - with a key column, each of its values has a series of the first of those columns;
//  - days, months, hours and the like are drawn as lines when they are many or are no sums, else as
//    bars; names as a pie when they are few and have one series; several series of sums are
//    stacked, without the one that is the sum of the others.
// Of many names the largest are drawn. Rows whose labels repeat are a list and have no graph.
// Memory does not grow with the number of rows.
class LumoraReportGraphBuilder : public ReportRowReader {
  public:
    // The URL behind the cell of that column in that row (raw, in the result's order), or "".
    using CellLink = std::function<std::string(const LumoraSQLColumnDescription& column,
                                               const std::vector<std::string_view>& row)>;

    static constexpr size_t kMostPoints = 366;  // of labels that stand in an order
    static constexpr size_t kMostNames = 30;    // beyond them, the largest kTopNames are drawn
    static constexpr size_t kTopNames = 20;
    static constexpr size_t kMostSeries = 6;
    static constexpr size_t kMostSlices = 8;

    // `format` and `multikeyfield` are the definition's. `columns`, which must outlive the builder,
    // and `names` are as for ReportTableWriter; a word of `format` that names no column of both is
    // as if it were not there.
    LumoraReportGraphBuilder(const LumoraReportSQLCol& columns,
                             const std::vector<std::string_view>& names, const char* format,
                             const char* multikeyfield);

    // Gives the points their links; to be called before the first row.
    void SetLinks(CellLink link) { link_ = std::move(link); }
    void AddRow(const std::vector<std::string_view>& row) override;
    // The graph of what came, titled so; null when the rows have no shape to show: fewer than two,
    // nothing to count, too many points, or "graph:none".
    std::unique_ptr<LumoraReportGraph> Build(PortalContext& ctx, const char* title);

  private:
    enum Kind { kChoose, kNone, kBar, kGlass, kStack, kLine, kPie, kHeat };
    struct Column {
        int field = -1;  // of the result
        ReportStyle style = ReportStyle::kText;
        const LumoraSQLColumnDescription* description = nullptr;
    };
    struct Point {
        std::string label;
        std::string key;
        std::vector<ReportGraphValue> values;  // one a drawn column
        double height;
    };

    void ReadFormat(std::string_view format);
    void ChooseColumns(std::string_view series, std::string_view label);
    void ChooseSeries();
    Column Find(std::string_view fieldname) const;
    std::vector<Column> Where(ReportStyle style, bool summed) const;
    ReportGraphValue ValueOf(const Column& column, const std::vector<std::string_view>& row) const;
    bool Merge(const Point& point);
    void KeepLargest();
    ReportGraphData ByColumn();
    ReportGraphData ByKey();
    bool AreSums() const;
    bool IsOrdered() const;
    Kind Choose(const ReportGraphData& data) const;
    static const char* SeriesType(Kind kind);
    double ShareOfOthers(ReportGraphData data) const;
    void AddOthers(ReportGraphData& data) const;
    std::string HeadingOf(const Column& column) const;
    std::string ValueLegend(const PortalContext& ctx) const;
    std::unique_ptr<LumoraReportGraph> Draw(PortalContext& ctx, const char* title,
                                            const ReportGraphData& data, Kind kind,
                                            std::string note) const;

    const LumoraReportSQLCol& columns_;
    std::vector<std::string> names_;
    Kind kind_ = kChoose;
    Column label_;
    Column key_;  // field -1: none
    std::vector<Column> drawn_;
    CellLink link_;
    std::vector<Point> points_;
    std::unordered_map<std::string, size_t> byLabel_;  // their positions, where rows merge
    uint64_t rows_ = 0;
    double total_ = 0;  // of the first drawn column, over all rows
    double smallest_ = -std::numeric_limits<double>::infinity();  // height of what is worth keeping
    bool chosenSeries_ = false;                                   // by the format
    bool merges_ = false;  // rows of the same label become one point
    bool tooMany_ = false;
};
