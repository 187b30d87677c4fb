#include "portal/report/LumoraReportGraph.h"

#include <utility>

#include "common/Html.h"

ReportChart::ReportChart(std::unique_ptr<OpenFlashGraph> chart, std::string note)
    : chart_(std::move(chart)), note_(std::move(note)) {}

void ReportChart::Render(WebContext& ctx, WebRender* out) {
    // The address of the data is known once its file is written.
    UStringWebRender target;
    chart_->Render(ctx, &target);
    const UString url = chart_->GetDataURL(ctx);
    out->printf("<figure class=\"reportChart\" data-chart=\"%s\">\n",
                HtmlAttr(url.c_str()).c_str());
    out->Write(target.output.c_str());
    out->Write(
        "\n<noscript><p class=\"hint\">The chart is drawn by JavaScript, which is switched off."
        "</p></noscript>\n");
    WriteNote(*out);
    out->Write("</figure>\n");
    out->Write(OpenFlashGraph::GetHeaders(ctx));
}

void ReportChart::WriteNote(WebRender& out) const {
    if (!note_.empty())
        out.printf("<figcaption class=\"hint\">%s</figcaption>\n", HtmlText(note_.c_str()).c_str());
}

void ReportChart::RenderImage(WebContext& ctx, WebRender* out) {
    Render(ctx, out);
}
