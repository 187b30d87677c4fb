#include "portal/report/ReportPrintPage.h"

#include "common/Html.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReport.h"
#include "portal/report/ReportFacts.h"

namespace {

// How many columns a sheet takes in letters of each size, in points.
constexpr struct {
    int columns;
    const char* sheet;
    double points;
} kSheets[] = {
    {8, "portrait", 10},  {13, "landscape", 9},   {18, "landscape", 7.5},
    {26, "landscape", 6}, {40, "landscape", 4.5}, {0, "landscape", 3},
};

}  // namespace

ReportPrintPage::ReportPrintPage(WebContext& ctx, LumoraReport* report)
    : ThemePage(ctx, /*addToHistory=*/false) {
    const auto* sheet = kSheets;
    while (sheet->columns != 0 && sheet->columns < report->columnCount())
        ++sheet;
    css.Format("<style>@page{size:A4 %s}@media print{html{font-size:%.1fpt}}</style>\n",
               sheet->sheet, sheet->points);
    header = "<script src=\"js/print.js\" defer></script>\n";
    PageAttributes = "class=\"paper\"";
    Add(report);
}

void ReportPrintPage::RenderFrameTop(WebContext&, WebRender* out) {
    std::string html = "<header class=\"paperHead\"><span>";
    if (portal() != nullptr) AppendHtmlText(html, portal()->customerName.c_str());
    html += "</span><button type=\"button\" id=\"printButton\" hidden>Print</button></header>\n";
    out->Write(html + "<main id=\"content\">\n");
}

void ReportPrintPage::RenderFrameBottom(WebContext&, WebRender* out) {
    out->Write("</main>\n");
}
