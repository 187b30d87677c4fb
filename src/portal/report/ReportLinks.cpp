#include "portal/report/ReportLinks.h"

#include <utility>

#include "cgiFramework/UrlArgument.h"
#include "common/Html.h"
#include "common/ThrowText.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/ReportColumns.h"
#include "portal/report/ReportDefinition.h"

namespace {

constexpr char kSubmit[] = "Generate Report";

}  // namespace

ReportLinks::ReportLinks(PortalContext& ctx, const ReportDefinition& definition,
                         const LumoraReportFilter& filter, const ReportView& view)
    : report_(definition.pagename.c_str()), view_(view) {
    UString criteria;
    filter.AppendArguments(criteria);
    criteria_ = criteria.c_str();

    program_ = ctx.GetURL("pagename=");
    run_ = RunUrl(ctx, definition, filter).c_str();
    if (view.graphOnly) run_ += "&graphonly=true";
    if (view.tableOnly) run_ += "&tableonly=true";
    here_ = With(view.sort.c_str(), view.descending, view.rows);
}

std::string ReportLinks::With(const char* sort, bool descending, uint64_t rows) const {
    std::string url = run_;
    if (*sort != '\0') {
        AppendUrlArgument(url, "sort", sort);
        AppendUrlArgument(url, "dir", descending ? "desc" : "asc");
    }
    if (rows == ReportView::kAllRows)
        url += "&rows=all";
    else if (rows != ReportView().rows)
        AppendUrlArgument(url, "rows", std::to_string(rows));
    return url;
}

std::string ReportLinks::Sorted(const char* field, bool descending) const {
    return With(field, descending, view_.rows);
}

std::string ReportLinks::Page(uint64_t page) const {
    return here_ + "&page=" + std::to_string(page);
}

std::string ReportLinks::RowsAPage(uint64_t rows) const {
    return With(view_.sort.c_str(), view_.descending, rows);
}

std::string ReportLinks::CellPage(const LumoraSQLColumnDescription& column) const {
    std::string url = program_;
    AppendUrlValue(url, column.linkpage);
    AppendUrlArgument(url, "submit", kSubmit);
    return url + '&';
}

std::string ReportLinks::CellCriteria(const LumoraSQLColumnDescription& column) const {
    std::string url = criteria_;
    AppendUrlArgument(url, "parent", report_);
    AppendUrlArgument(url, "field", column.fieldname);
    return url;
}

ReportCellLink::ReportCellLink(const ReportLinks* links, const ReportColumn& match,
                               const std::vector<std::string_view>& names)
    : counts_(match.style != ReportStyle::kText && match.style != ReportStyle::kDate) {
    const LumoraSQLColumnDescription& column = *match.description;
    if (links == nullptr || *column.linkpage == '\0') return;
    const auto append = [this](std::string text, int field) {
        std::string html = HtmlAttr(text.c_str()).c_str();
        pieces_.push_back({std::move(text), std::move(html), field});
    };
    std::string text = links->CellPage(column);
    std::string_view rest = column.linkdetail;
    for (size_t open; (open = rest.find('[')) != std::string_view::npos;) {
        const size_t close = rest.find(']', open);
        if (close == std::string_view::npos) break;
        const std::string name(rest.substr(open + 1, close - open - 1));
        const int field = FindResultColumn(names, name);
        if (field < 0)
            ThrowText(
                "The link of column \"%s\" needs the field \"%s\", which this report's "
                "query does not return.",
                column.fieldname, name.c_str());
        text += rest.substr(0, open);
        append(std::exchange(text, {}), field);
        rest.remove_prefix(close + 1);
    }
    text += rest;
    append(text + links->CellCriteria(column), -1);
}

bool ReportCellLink::Leads(std::string_view raw) const {
    if (pieces_.empty() || raw.empty()) return false;
    // Most that do not are a bare "0", and most that do begin with another digit.
    if (!counts_ || raw.front() != '0') return true;
    ReportDecimal value;
    return !ParseReportDecimal(raw, value) || value.units != 0;
}

void ReportCellLink::AppendOpen(std::string& html, const std::vector<std::string_view>& row) const {
    html += "<a href=\"";
    for (const Piece& piece : pieces_) {
        html += piece.html;
        // Nothing of an encoded value needs escaping.
        if (piece.field >= 0) AppendUrlValue(html, row[piece.field]);
    }
    html += "\">";
}

std::string ReportCellLink::Url(const std::vector<std::string_view>& row) const {
    std::string url;
    for (const Piece& piece : pieces_) {
        url += piece.text;
        if (piece.field >= 0) AppendUrlValue(url, row[piece.field]);
    }
    return url;
}
