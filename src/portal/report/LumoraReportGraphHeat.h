// LumoraReportGraphHeat.h: a table whose cells are shaded by their values: when calls come.
#pragma once

#include <string>

#include "portal/report/LumoraReportGraph.h"
#include "portal/report/LumoraReportGraphData.h"
#include "portal/report/ReportCell.h"

// One row a label and one column a series, columns of numbers, dates or times in their order. Every
// cell shows its value, so that the shade only repeats what stands there; it is the same on the
// page and on paper.
class ReportHeatTable : public LumoraReportGraph {
  public:
    // `style` is that of the values; `rows` and `columns` say what the headings are.
    ReportHeatTable(ReportGraphData data, ReportStyle style, const char* title, std::string rows,
                    std::string columns);
    void Render(WebContext& ctx, WebRender* out) override;
    void RenderImage(WebContext& ctx, WebRender* out) override { Render(ctx, out); }

  private:
    void AppendRow(std::string& html, size_t label, double largest) const;

    ReportGraphData data_;
    ReportStyle style_;
    std::string title_;
    std::string rows_;
    std::string columns_;
};
