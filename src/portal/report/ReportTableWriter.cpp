#include "portal/report/ReportTableWriter.h"

#include <algorithm>
#include <utility>

#include "cgiFramework/WebRender.h"
#include "common/Html.h"

namespace {

constexpr size_t kBlockSize = 128 << 10;

}  // namespace

ReportTableWriter::ReportTableWriter(const LumoraReportSQLCol& columns,
                                     const std::vector<std::string_view>& names, WebRender& out,
                                     const ReportTableLayout& layout)
    : columns_(columns),
      layout_(layout),
      cells_(MakeCells(names)),
      totals_(columns, names),
      series_(layout.seriesTitle, layout.seriesKeys, names),
      seriesTotals_(columns, names),
      out_(out),
      first_(layout.view.FirstRow()),
      most_(layout.view.MostRows()) {}

std::vector<ReportTableWriter::Cell> ReportTableWriter::MakeCells(
    const std::vector<std::string_view>& names) const {
    std::vector<Cell> cells;
    for (const ReportColumn& column : MatchReportColumns(columns_, names)) {
        // Figures are what a cell usually holds: in a long table every byte of a cell counts.
        const bool isFigure =
            column.style != ReportStyle::kText && column.style != ReportStyle::kDate;
        std::string open = "<td>";
        if (!isFigure)
            open.insert(3, " class=\"" + std::string(ReportStyleName(column.style)) + '"');
        std::string next = cells.empty() ? open : "</td>" + open;
        cells.push_back({column.field, column.style, std::move(open), std::move(next),
                         ReportCellLink(layout_.links, column, names)});
    }
    return cells;
}

void ReportTableWriter::AddRow(const std::vector<std::string_view>& row) {
    if (rows_ == 0) Open();
    if (series_.any()) {
        if (series_.Begins(row)) {
            EndSeries();
            headingDue_ = true;
        }
        seriesTotals_.AddRow(row);
    }
    totals_.AddRow(row);
    const bool onPage = rows_ >= first_ && rows_ - first_ < most_;
    ++rows_;
    seriesShown_ = onPage;
    if (!onPage) return;
    if (headingDue_) AppendSeriesHeading();
    AppendRow(row);
    if (block_.size() >= kBlockSize) Send();
}

void ReportTableWriter::AppendRow(const std::vector<std::string_view>& row) {
    block_ += ++shown_ % 2 != 0 ? "<tr class=\"oddrow\">" : "<tr class=\"evenrow\">";
    for (const Cell& cell : cells_) {
        const std::string_view raw = row[cell.field];
        const bool leads = cell.link.Leads(raw);
        block_ += cell.next;
        if (leads) cell.link.AppendOpen(block_, row);
        AppendReportCell(block_, cell.style, raw);
        if (leads) block_ += "</a>";
    }
    block_ += "</td></tr>\n";
}

void ReportTableWriter::AppendSeriesHeading() {
    block_.append("<tr class=\"seriesrow\"><th colspan=\"").append(std::to_string(cells_.size()));
    block_ += "\" scope=\"rowgroup\">";
    AppendHtmlText(block_, series_.Title());
    block_ += "</th></tr>\n";
    headingDue_ = false;
}

// A series whose end lies on another page has its totals there.
void ReportTableWriter::EndSeries() {
    if (seriesShown_ && totals_.any()) AppendTotals(seriesTotals_, "subtotalrow");
    seriesTotals_.Clear();
}

void ReportTableWriter::Finish() {
    if (rows_ == 0) return;
    if (series_.any()) EndSeries();
    block_ += "</tbody>\n";
    if (totals_.any()) {
        block_ += "<tfoot>";
        AppendTotals(totals_, "totalrow");
        block_ += "</tfoot>\n";
    }
    block_ += "</table></div>\n";
    AppendCount();
    Send();
}

void ReportTableWriter::BreakOff() {
    if (rows_ == 0) return;
    block_ += "</tbody>\n</table></div>\n";
    Send();
}

void ReportTableWriter::Open() {
    block_.reserve(kBlockSize + kBlockSize / 2);
    block_ =
        "<div class=\"tableScroll\" tabindex=\"0\" role=\"region\" aria-label=\"Result\">"
        "<table class=\"reportTable\">\n<thead>\n";
    AppendGroupTitles();
    block_ += "<tr>";
    for (int i = 0; i < columns_.count(); ++i)
        AppendHeading(columns_.columns()[i], cells_[i].style);
    block_ += "</tr>\n</thead>\n<tbody>\n";
}

// One heading above each run of neighbours that share a group title.
void ReportTableWriter::AppendGroupTitles() {
    const LumoraSQLColumnDescription* column = columns_.begin();
    while (column != columns_.end() && *column->grouptitle == '\0')
        ++column;
    if (column == columns_.end()) return;

    block_ += "<tr class=\"grouprow\">";
    for (column = columns_.begin(); column != columns_.end();) {
        const std::string_view title = column->grouptitle;
        const LumoraSQLColumnDescription* next = column;
        while (next != columns_.end() && title == next->grouptitle)
            ++next;
        const std::string span = std::to_string(next - column);
        if (title.empty()) {
            block_.append("<td colspan=\"").append(span).append("\"></td>");
        } else {
            block_.append("<th scope=\"colgroup\" colspan=\"").append(span).append("\">");
            AppendHtmlText(block_, title);
            block_ += "</th>";
        }
        column = next;
    }
    block_ += "</tr>\n";
}

// A heading leads to the same rows in its column's order: figures begin with the largest. Where
// they are in that order already, it turns round.
void ReportTableWriter::AppendHeading(const LumoraSQLColumnDescription& column, ReportStyle style) {
    const bool sorted = layout_.view.SortColumn(columns_) == &column;
    const bool descending = layout_.view.descending;
    block_.append("<th scope=\"col\" class=\"").append(ReportStyleName(style)) += '"';
    if (sorted) block_.append(" aria-sort=\"").append(descending ? "de" : "a").append("scending\"");
    block_ += '>';
    if (layout_.links != nullptr) {
        const bool figures = style != ReportStyle::kText && style != ReportStyle::kDate;
        const std::string url =
            layout_.links->Sorted(column.fieldname, sorted ? !descending : figures);
        block_.append("<a href=\"").append(HtmlAttr(url.c_str()).c_str()).append("\">");
    }
    AppendHtmlText(block_, column.description);
    block_ += layout_.links != nullptr ? "</a></th>" : "</th>";
}

void ReportTableWriter::AppendTotals(const ReportTotals& totals, const char* rowClass) {
    block_.append("<tr class=\"").append(rowClass).append("\">");
    for (int i = 0; i < columns_.count(); ++i) {
        if (i == 0 && !totals.Has(i)) {
            block_ += "<th scope=\"row\">Total</th>";
            continue;
        }
        block_ += cells_[i].open;
        totals.Append(block_, i, cells_[i].style);
        block_ += "</td>";
    }
    block_ += "</tr>";
    if (&totals == &seriesTotals_) block_ += '\n';
}

void ReportTableWriter::AppendCount() {
    block_ += "<div class=\"rowCount\">";
    const bool isWhole = shown_ == rows_;
    if (shown_ == 0) {
        block_.append("There is no page ").append(GroupedNumber(layout_.view.page));
        block_.append(": the report has ").append(GroupedNumber(rows_));
    } else if (!isWhole) {
        block_.append("Rows ").append(GroupedNumber(first_ + 1)).append("-");
        block_.append(GroupedNumber(first_ + shown_)).append(" of ").append(GroupedNumber(rows_));
    } else {
        block_ += GroupedNumber(rows_);
    }
    if (isWhole || shown_ == 0) block_ += rows_ == 1 ? " row" : " rows";
    block_ += "</div>\n";
    if (layout_.links != nullptr && rows_ > kRowsAPage.front()) AppendPager();
}

void ReportTableWriter::AppendPager() {
    const ReportLinks& links = *layout_.links;
    const uint64_t last = (rows_ - 1) / most_ + 1;
    const uint64_t page = std::min(layout_.view.page, last + 1);
    block_ += "<nav class=\"pager\" aria-label=\"Pages of the result\">";
    if (last > 1 || page > last) {
        block_ += "<span>";
        AppendPagerLink(page > 1 ? links.Page(1) : "", "First", "");
        AppendPagerLink(page > 1 ? links.Page(page - 1) : "", "Previous", "");
        block_.append("<span>Page ").append(GroupedNumber(layout_.view.page)).append(" of ");
        block_.append(GroupedNumber(last)).append("</span>");
        AppendPagerLink(page < last ? links.Page(page + 1) : "", "Next", "");
        AppendPagerLink(page < last ? links.Page(last) : "", "Last", "");
        block_ += "</span>";
    }
    block_ += "<span>Rows a page:";
    std::vector<uint64_t> choices = kRowsAPage;
    choices.push_back(ReportView::kAllRows);
    for (const uint64_t rows : choices) {
        const bool present = rows == layout_.view.rows;
        AppendPagerLink(present ? "" : links.RowsAPage(rows),
                        rows == ReportView::kAllRows ? "All" : GroupedNumber(rows),
                        present ? " aria-current=\"true\"" : "");
    }
    block_ += "</span></nav>\n";
}

// An empty address: the choice is not to be had, or is the present one.
void ReportTableWriter::AppendPagerLink(const std::string& url, const std::string& caption,
                                        const char* attributes) {
    const char* element = url.empty() ? "span" : "a";
    block_.append(" <").append(element).append(attributes);
    if (!url.empty()) block_.append(" href=\"").append(HtmlAttr(url.c_str()).c_str()) += '"';
    block_.append(">").append(caption).append("</").append(element).append(">");
}

void ReportTableWriter::Send() {
    out_.Write(block_);
    block_.clear();
}
