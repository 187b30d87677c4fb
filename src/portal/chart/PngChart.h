// PngChart.h: draws a chart description into a PNG file, with an image map for its links.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cgiFramework/JsonObj.h"
#include "kernel/OSList.h"
#include "portal/chart/ChartPie.h"
#include "portal/chart/ChartScale.h"
#include "portal/chart/ChartText.h"
#include "portal/chart/ChartValues.h"
#include "portal/chart/pngwriter.h"

// An entry of the key as it is laid out.
struct ChartKey : OSLinkListObj {
    UString text;
    unsigned rgb = 0;
    int width = 0;  // of swatch, text and the room behind them
};

// The chart is drawn by the constructor, from top to bottom: title, key, plot, ticks and labels of
// the points, legend of the points; the value axis and its legend stand at the left. docs/charts.md
// describes what is read from the description and the limits. Coordinates are pixels from the
// lower left corner.
//
//   JsonObj json(text, nullptr, 0);
//   PngChart chart(&json, 600, 300, "/Norvane/sessions/charts/1.png",
//   "https://portal.example.com"); chart.GetMap(name, map);   // <img usemap="#name" ...> and the
//   map's HTML
class PngChart {
  public:
    // Draws `json`, which must live as long as the chart, into `file`. A picture of bars or lines
    // is as high as its parts need, a pie takes `height`. `server` is put in front of each link.
    // Throws a text, and leaves no file, for a description that cannot be drawn.
    PngChart(JsonObj* json, int width, int height, const char* file, const char* server);
    ~PngChart();
    PngChart(const PngChart&) = delete;
    PngChart& operator=(const PngChart&) = delete;

    // The name of the image map and its HTML, in which there are only areas with a link.
    void GetMap(UString& name, UString& map) const;

    // Draws a text from the left end of its base line.
    void Write(const char* font, int size, int x, int y, double angle, const char* words,
               unsigned colour);

    JsonObj* json;
    pngwriter png;
    int width, height;
    int x_origin = 0, y_origin = 0;
    int x_legend_margin = 6;
    int key_padding = 8, key_indent = 58, key_rows = 0;
    std::unique_ptr<OSList<ChartKey>> key_list;
    int height_title = 0, height_keys = 0, height_x_legend = 0, height_x_labels = 0,
        height_x_ticks = 0, height_chart = 0;
    int xspace = 0;
    int ymax = 0;
    JsonObj *elements = nullptr, *e0 = nullptr, *chart_type = nullptr, *title = nullptr,
            *xlegend = nullptr, *ylegend = nullptr, *ystyle = nullptr, *xaxis = nullptr,
            *yaxis = nullptr, *keys = nullptr;
    std::unique_ptr<ChartText> title_text, xlegend_text, ylegend_text;
    int* rgb = nullptr;  // 0xRRGGBB each, in colours_
    int num_colours = 0;
    UString server;
    UString img_map_id, img_map;

  private:
    struct Label {
        UString text;
        int size;
        int width;
    };
    struct PieLabelStyle {
        int lines;  // 1, or 2: the name above the figures
        int room;   // pixels for a line
    };
    struct PieLabel {
        UString name, figures;  // a line each; the second may be empty
        int width;
    };
    enum class Rotation { kHorizontal, kVertical, kDiagonal };

    void FindMembers();
    bool IsType(const char* prefix) const;
    void NameMap(const char* file);
    void Create(const char* file);
    void BuildTitle();

    // PngChartLayout.cpp: the bands of a bar chart, and what stands in them around the plot.
    void BarChartGetHeights();
    void ReadXLabels();
    int MaxHeightXLabel() const;
    void BuildKeys();
    int RowsOfKeys(int most) const;
    void PlotKeys();
    void PlotLegends();
    void PlotXLabels();
    int LabelStride() const;
    void PlotXLabel(const Label& label, double middle, int room);

    // PngChartAxis.cpp: the value axis.
    void ReadSeries();
    double LargestValue() const;
    bool IsEmpty() const;
    void BuildAxis();
    void PlotAxis();
    void ReadYLabelStyle();
    UString YLabel(int index) const;
    bool IsTime() const;

    // PngChartBars.cpp, PngChartLines.cpp: what stands in the plot.
    void PlotBarChart();
    void PlotBars();
    void PlotStacks();
    void PlotLines();
    void PlotLine(const ChartValueList& values);
    void PlotBar(double from, double to, const ChartValue& value, double low, double high);
    void AddRectangle(int left, int bottom, int right, int top, const ChartValue& value);
    double Slot(double index) const;
    void PlotEmpty(int x, int y);

    // PngChartPie.cpp: a pie with its labels.
    void PlotPieChart();
    void PlotSlices(const ChartPie& pie);
    void PlotSlicePixel(const ChartPie& pie, int x, int y, double opacity);
    PieLabel LabelOf(const ChartPie::Slice& slice, const PieLabelStyle& style);
    void PlotPieLabels(const ChartPie& pie, bool isRight, const PieLabelStyle& style);
    void AddSlice(const ChartPie& pie, const ChartPie::Slice& slice);

    // Colours are 0xRRGGBB; corners and ends belong to what is drawn.
    void Fill(int left, int bottom, int right, int top, unsigned colour);
    void Line(int fromX, int fromY, int toX, int toY, unsigned colour);
    void Blend(int x, int y, double opacity, unsigned colour);
    UString GetLink(const ChartValue& value) const;

    std::string areas_;  // of the image map
    std::vector<int> colours_;
    std::vector<ChartKeyEntry> keyEntries_;
    std::vector<Label> labels_;
    Rotation rotation_ = Rotation::kHorizontal;
    std::vector<ChartValueList> bars_, lines_, stacks_;  // one list an element, or a stack
    size_t slots_ = 0;                                   // points beside one another
    int plotWidth_ = 0;
    ChartScale scale_;
    unsigned axisColour_ = 0x0000BC;
    int tickLength_ = 0;
    int yLabelSize_ = 11;
    unsigned yLabelColour_ = 0x303030;
};
