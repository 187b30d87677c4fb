// LumoraReportGraph.h: the graph of a report's result, on the page and on paper.
#pragma once

#include <memory>
#include <string>

#include "cgiFramework/WebPage.h"
#include "portal/chart/OpenFlashGraph.h"

class JsonObj;

class LumoraReportGraph : public WebItem {
  public:
    // Writes the graph for the browser.
    void Render(WebContext& ctx, WebRender* out) override = 0;
    // Writes the graph so that it needs neither script nor further requests: for print and mail.
    virtual void RenderImage(WebContext& ctx, WebRender* out) = 0;
};

// A chart, which the script web/js/chart.js draws, with a table of its figures; for print a picture
// with the same links.
class ReportChart : public LumoraReportGraph {
  public:
    // `note` is a sentence under the chart, or empty.
    ReportChart(std::unique_ptr<OpenFlashGraph> chart, std::string note);
    void Render(WebContext& ctx, WebRender* out) override;
    void RenderImage(WebContext& ctx, WebRender* out) override;

  private:
    std::string DrawPicture(JsonObj& json, UString& mapName, UString& map);
    void WriteNote(WebRender& out) const;

    std::unique_ptr<OpenFlashGraph> chart_;
    std::string note_;
};
