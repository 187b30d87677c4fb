#include "portal/report/ReportTableWriter.h"

#include "cgiFramework/WebRender.h"
#include "common/Html.h"
#include "common/ThrowText.h"

namespace {

constexpr size_t kBlockSize = 32 << 10;

}  // namespace

ReportTableWriter::ReportTableWriter(const LumoraReportSQLCol& columns,
                                     const std::vector<std::string_view>& names, WebRender& out)
    : columns_(columns), cells_(MatchCells(columns, names)), totals_(columns, names), out_(out) {}

std::vector<ReportTableWriter::Cell> ReportTableWriter::MatchCells(
    const LumoraReportSQLCol& columns, const std::vector<std::string_view>& names) {
    if (columns.count() == 0) ThrowText("The column definition file of this report is empty.");
    std::vector<Cell> cells;
    for (const LumoraSQLColumnDescription& column : columns) {
        Cell cell;
        if (!ParseReportStyle(column.style, cell.style))
            ThrowText("Column \"%s\" of this report has the unknown style \"%s\".",
                      column.fieldname, column.style);
        cell.field = FindResultColumn(names, column.fieldname);
        if (cell.field < 0)
            ThrowText("The column \"%s\" of this report is not among the columns of its query.",
                      column.fieldname);
        cell.open.append("<td class=\"").append(ReportStyleName(cell.style)).append("\">");
        cells.push_back(std::move(cell));
    }
    return cells;
}

void ReportTableWriter::AddRow(const std::vector<std::string_view>& row) {
    if (rows_ == 0) Open();
    block_ += ++rows_ % 2 != 0 ? "<tr class=\"oddrow\">" : "<tr class=\"evenrow\">";
    for (const Cell& cell : cells_) {
        block_ += cell.open;
        AppendReportCell(block_, cell.style, row[cell.field]);
        block_ += "</td>";
    }
    block_ += "</tr>\n";
    totals_.Add(row);
    if (block_.size() >= kBlockSize) Send();
}

void ReportTableWriter::Finish() {
    if (rows_ == 0) return;
    block_ += "</tbody>\n";
    if (totals_.any()) AppendTotals();
    block_ += "</table></div>\n<div class=\"rowCount\">";
    block_.append(std::to_string(rows_)).append(rows_ == 1 ? " row" : " rows").append("</div>\n");
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
    for (int i = 0; i < columns_.count(); ++i) {
        block_.append("<th scope=\"col\" class=\"").append(ReportStyleName(cells_[i].style));
        block_ += "\">";
        AppendHtmlText(block_, columns_.columns()[i].description);
        block_ += "</th>";
    }
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

void ReportTableWriter::AppendTotals() {
    block_ += "<tfoot><tr class=\"totalrow\">";
    for (int i = 0; i < columns_.count(); ++i) {
        if (i == 0 && !totals_.Has(i)) {
            block_ += "<th scope=\"row\">Total</th>";
            continue;
        }
        block_ += cells_[i].open;
        totals_.Append(block_, i, cells_[i].style);
        block_ += "</td>";
    }
    block_ += "</tr></tfoot>\n";
}

void ReportTableWriter::Send() {
    out_.Write(block_);
    block_.clear();
}
