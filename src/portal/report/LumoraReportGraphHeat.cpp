#include "portal/report/LumoraReportGraphHeat.h"

#include <algorithm>
#include <utility>

#include "common/Html.h"

ReportHeatTable::ReportHeatTable(ReportGraphData data, ReportStyle style, const char* title,
                                 std::string rows, std::string columns)
    : data_(std::move(data)),
      style_(style),
      title_(title),
      rows_(std::move(rows)),
      columns_(std::move(columns)) {
    data_.SortSeries();
}

void ReportHeatTable::Render(WebContext&, WebRender* out) {
    double largest = 0;
    for (const ReportGraphSeries& series : data_.series)
        for (const ReportGraphValue& value : series.values)
            largest = std::max(largest, value.number);

    std::string html = "<figure class=\"reportChart\"><figcaption class=\"heatTitle\">";
    AppendHtmlText(html, title_);
    html +=
        "</figcaption>\n<div class=\"heatScroll\" tabindex=\"0\" role=\"region\" "
        "aria-label=\"Heat table\"><table class=\"heatTable\">\n<thead><tr><th scope=\"col\">";
    AppendHtmlText(html, rows_ + " / " + columns_);
    html += "</th>";
    for (const ReportGraphSeries& series : data_.series) {
        html += "<th scope=\"col\">";
        AppendHtmlText(html, series.name);
        html += "</th>";
    }
    html += "</tr></thead>\n<tbody>\n";
    for (size_t i = 0; i < data_.labels.size(); ++i)
        AppendRow(html, i, largest);
    html += "</tbody>\n</table></div></figure>\n";
    out->Write(html);
}

// A shade is a share of the largest value, in per cent.
void ReportHeatTable::AppendRow(std::string& html, size_t label, double largest) const {
    html += "<tr><th scope=\"row\">";
    AppendHtmlText(html, data_.labels[label]);
    html += "</th>";
    for (const ReportGraphSeries& series : data_.series) {
        const ReportGraphValue& value = series.values[label];
        const int shade =
            largest > 0 ? static_cast<int>(100 * std::max(value.number, 0.0) / largest) : 0;
        html += "<td style=\"--heat:" + std::to_string(shade) + "\">";
        if (!value.link.empty()) {
            html += "<a href=\"";
            html += HtmlAttr(value.link.c_str()).c_str();
            html += "\">";
        }
        AppendReportCell(html, style_, value.text.empty() ? "0" : value.text);
        html += value.link.empty() ? "</td>" : "</a></td>";
    }
    html += "</tr>\n";
}
