// The values of a bar chart and the axis that measures them.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "portal/chart/ChartFont.h"
#include "portal/chart/PngChart.h"

namespace {

constexpr char kTimeLegend[] = "Minutes on Calls";  // its axis counts seconds
constexpr int kAxisMargin = 6;
constexpr int kRightMargin = 12;
constexpr double kLineHeight = 1.6;  // between two labels, in sizes
constexpr unsigned kGridColour = 0xDCDCDC;

bool IsOfType(const JsonObj& element, const char* prefix) {
    return strncmp(element.String("type"), prefix, strlen(prefix)) == 0;
}

}  // namespace

void PngChart::ReadSeries() {
    if (IsOfType(*e0, "bar_stack")) {
        stacks_ = ReadStackValues(*e0, colours_, keyEntries_);
        slots_ = stacks_.size();
    }
    for (const JsonObj& element : elements->values) {
        const bool isFirst = &element == e0;
        if (isFirst && !stacks_.empty()) continue;
        auto& list = IsOfType(element, "line") ? lines_ : bars_;
        list.push_back(ReadBarValues(element, isFirst, isFirst ? colours_ : std::vector<int>()));
        slots_ = std::max(slots_, list.back().size());
    }
}

double PngChart::LargestValue() const {
    double largest = 0;
    for (const auto* list : {&bars_, &lines_})
        for (const ChartValueList& values : *list)
            for (const ChartValue& value : values)
                largest = std::max(largest, value.number);
    for (const ChartValueList& pieces : stacks_) {
        double sum = 0;
        for (const ChartValue& piece : pieces)
            sum += piece.number;
        largest = std::max(largest, sum);
    }
    return largest;
}

bool PngChart::IsEmpty() const {
    for (const auto* list : {&bars_, &lines_, &stacks_})
        for (const ChartValueList& values : *list)
            for (const ChartValue& value : values)
                if (value.present) return false;
    return true;
}

// The style of the value labels is "size,#colour"; their size is eight tenths of the one told.
void PngChart::ReadYLabelStyle() {
    if (ystyle == nullptr) return;
    char* end = nullptr;
    const long told = std::clamp(strtol(ystyle->String(), &end, 10), 0L, 1000L);
    yLabelSize_ = std::clamp(static_cast<int>(told * 80 / 100), 1, ChartFont::kMaxSize);
    if (*end == ',') ReadChartColour(end + 1, yLabelColour_);
}

bool PngChart::IsTime() const {
    return ylegend_text != nullptr && strcmp(ylegend_text->String(), kTimeLegend) == 0;
}

UString PngChart::YLabel(int index) const {
    return ChartNumber(index * scale_.step, scale_.step, IsTime());
}

// The scale, and where the plot begins: right of legend, labels and ticks.
void PngChart::BuildAxis() {
    double max = NAN, step = NAN;
    if (yaxis != nullptr) {
        max = ChartNumberOf(yaxis->Find("max"), NAN);
        step = ChartNumberOf(yaxis->Find("steps"), NAN);
        tickLength_ =
            static_cast<int>(std::clamp(ChartNumberOf(yaxis->Find("tick-length"), 0), 0.0, 100.0));
        ReadChartColour(yaxis->String("colour"), axisColour_);
    }
    ReadYLabelStyle();
    scale_ = MakeChartScale(LargestValue(), max, step,
                            static_cast<int>(height_chart / (yLabelSize_ * kLineHeight)) + 1);
    ymax = static_cast<int>(std::ceil(scale_.top));
    int widest = 0;
    for (int i = 0; i < scale_.labels; ++i)
        widest = std::max(widest, png.get_text_width(kVeraPath, yLabelSize_, YLabel(i).c_str()));
    if (ylegend_text != nullptr) x_origin += ylegend_text->Height() + kAxisMargin;
    x_origin += widest + tickLength_ + kAxisMargin;
    plotWidth_ = std::max(width - x_origin - kRightMargin, 1);
    xspace = slots_ > 0 ? plotWidth_ / static_cast<int>(slots_) : plotWidth_;
}

void PngChart::PlotAxis() {
    const int right = x_origin + plotWidth_;
    for (int i = 0; i < scale_.labels; ++i) {
        const int y = y_origin + static_cast<int>(std::lround(static_cast<double>(height_chart) *
                                                              i / (scale_.labels - 1)));
        if (i > 0) Line(x_origin + 1, y, right, y, kGridColour);
        if (tickLength_ > 0) Line(x_origin - tickLength_, y, x_origin - 1, y, axisColour_);
        const UString label = YLabel(i);
        const int labelWidth = png.get_text_width(kVeraPath, yLabelSize_, label.c_str());
        Write(kVeraPath, yLabelSize_, x_origin - tickLength_ - labelWidth - kAxisMargin / 2,
              y - yLabelSize_ / 2, 0, label.c_str(), yLabelColour_);
    }
}
