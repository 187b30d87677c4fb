// OpenFlashGraph.h: a chart as data: series, axes and texts, written as the JSON description that
// the browser's chart script (web/js/chart.js) and PngChart draw.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cgiFramework/WebPage.h"
#include "portal/chart/OpenFlashGraphDataSeries.h"

class DescriptionWriter;

// One chart. All its series are of one type; those of type "bar_stack" stand upon one another, and
// a pie has one series. The points' labels are those of the first series.
class OpenFlashGraph : public WebItem {
  public:
    // With this value legend the values are seconds, which the axis writes as times.
    static constexpr char kTimeLegend[] = "Minutes on Calls";

    // The size is in pixels. `id` is that of the element which the script fills; it is ours, one a
    // page.
    OpenFlashGraph(int width, int height, const char* title, const char* xLegend,
                   const char* yLegend, const char* id);

    // Has no effect once the title is locked.
    void SetTitle(const char* title);
    const char* GetTitle() const { return title_.c_str(); }
    void LockTitle() { titleLocked_ = true; }
    // The value axis reaches this value at least, so that charts can be compared. 0: the largest
    // value alone decides.
    void SetScale(int scale) { scale_ = scale; }
    // Takes the series, which lives as long as the graph.
    OpenFlashGraphDataSeries& AddDataSeries(std::unique_ptr<OpenFlashGraphDataSeries> series);
    int GetCount() const { return static_cast<int>(series_.size()); }
    const OpenFlashGraphDataSeries& GetSeries(int index) const { return *series_[index]; }
    int width() const { return width_; }
    int height() const { return height_; }
    const char* id() const { return id_.c_str(); }

    // The largest value of all series; 0 when there is none above it.
    double getGraphHeight() const;
    // The largest sum of the series' values at one point.
    double getStackedGraphHeight() const;

    // The description's text. The argument "wallboard" of the request decides the size of the
    // texts.
    std::string Describe(const WebContext& ctx) const;
    // Writes the description to a new file of the session and removes old ones. A file that cannot
    // be written is reported on the console, and GetPathname is empty then.
    void writeData(WebContext& ctx);
    // The file, below "/Norvane"; empty before writeData.
    const UString& GetPathname() const { return pathname_; }
    // Where the browser finds the file: a URL of the page "jsonchart". Empty without a file.
    UString GetDataURL(WebContext& ctx) const;
    // The scripts that a page with charts needs.
    static const char* GetHeaders(WebContext& ctx);
    // Writes the file and the element that the script fills.
    void Render(WebContext& ctx, WebRender* out) override;

    // Removes the files of the folder, descriptions and pictures, that nobody wrote for two hours.
    static void deleteOldData();

  private:
    int TextBase(const WebContext& ctx) const;
    bool IsStacked() const;
    bool IsTime() const;
    int PointCount() const;
    const char* Rotation() const;
    static UString getRandomFName(const WebContext& ctx);
    void DescribeTitle(DescriptionWriter& out, int base) const;
    void DescribeLabels(DescriptionWriter& out, int base) const;
    void DescribeSeries(DescriptionWriter& out, const OpenFlashGraphDataSeries& series,
                        int base) const;
    void DescribePie(DescriptionWriter& out, const OpenFlashGraphDataSeries& series) const;
    void DescribeStack(DescriptionWriter& out, int base) const;
    void DescribeValueAxis(DescriptionWriter& out, int base) const;

    int width_;
    int height_;
    UString title_;
    UString xLegend_;
    UString yLegend_;
    UString id_;
    bool titleLocked_ = false;
    int scale_ = 0;
    std::vector<std::unique_ptr<OpenFlashGraphDataSeries>> series_;
    UString pathname_;
};
