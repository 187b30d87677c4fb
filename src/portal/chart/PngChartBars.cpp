// Bars: plain, like glass, and stacked.
#include <algorithm>
#include <cmath>

#include "portal/chart/PngChart.h"

namespace {

constexpr double kGroupPart = 0.76;    // of a point's room that its bars fill
constexpr double kNarrowestGroup = 3;  // pixels: below there is no room between groups
constexpr double kWidestBar = 60;
constexpr int kSmallestGlass = 4;  // pixels wide and high: below there is no room for shades
constexpr unsigned kEmptyColour = 0x707070;
constexpr int kEmptySize = 11;

// `part` of `to` in the rest of `from`.
unsigned Mix(unsigned from, unsigned to, double part) {
    unsigned mixed = 0;
    for (const int shift : {16, 8, 0}) {
        const double a = (from >> shift) & 0xFF, b = (to >> shift) & 0xFF;
        mixed |= static_cast<unsigned>(std::lround(a + (b - a) * part)) << shift;
    }
    return mixed;
}

// The colour of a glass cylinder seen from the side, `at` 0.0 to 1.0 across it: a gleam left of the
// middle, darker towards the edges.
unsigned GlassShade(unsigned rgb, double at) {
    constexpr double kGleam = 0.3;
    const double away = (at - kGleam) / (at < kGleam ? kGleam : 1 - kGleam);
    const double light = 1 - away * away;
    return light > 0.35 ? Mix(rgb, 0xFFFFFF, (light - 0.35) * 0.85)
                        : Mix(rgb, 0x000000, (0.35 - light) * 0.55);
}

// The width of each of `count` bars that share a point's room.
double BarWidth(double room, size_t count) {
    const double all = room * kGroupPart < kNarrowestGroup ? room : room * kGroupPart;
    return std::min(all / static_cast<double>(count), kWidestBar);
}

}  // namespace

double PngChart::Slot(double index) const {
    return x_origin + 1 + plotWidth_ * index / static_cast<double>(std::max<size_t>(slots_, 1));
}

void PngChart::PlotBarChart() {
    PlotKeys();
    PlotAxis();
    PlotBars();
    PlotStacks();
    Line(x_origin, y_origin, x_origin, y_origin + height_chart, axisColour_);
    Line(x_origin, y_origin, x_origin + plotWidth_, y_origin, axisColour_);
    PlotLines();
    PlotXLabels();
    PlotLegends();
    if (IsEmpty()) PlotEmpty(x_origin + plotWidth_ / 2, y_origin + height_chart / 2);
}

void PngChart::PlotEmpty(int x, int y) {
    constexpr char kNoData[] = "No data";
    Write(kVeraPath, kEmptySize, x - png.get_text_width(kVeraPath, kEmptySize, kNoData) / 2, y, 0,
          kNoData, kEmptyColour);
}

void PngChart::PlotBars() {
    if (bars_.empty()) return;
    const double slot = plotWidth_ / static_cast<double>(slots_);
    const double barWidth = BarWidth(slot, bars_.size());
    for (size_t point = 0; point < slots_; ++point) {
        double left = Slot(static_cast<double>(point) + 0.5) -
                      barWidth * static_cast<double>(bars_.size()) / 2;
        for (const ChartValueList& values : bars_) {
            if (point < values.size())
                PlotBar(left, left + barWidth, values[point], 0, values[point].number);
            left += barWidth;
        }
    }
}

void PngChart::PlotStacks() {
    if (stacks_.empty()) return;
    const double slot = plotWidth_ / static_cast<double>(slots_);
    const double barWidth = BarWidth(slot, 1);
    for (size_t point = 0; point < stacks_.size(); ++point) {
        const double left = Slot(static_cast<double>(point) + 0.5) - barWidth / 2;
        double sum = 0;
        for (const ChartValue& piece : stacks_[point]) {
            PlotBar(left, left + barWidth, piece, sum, sum + piece.number);
            sum += piece.number;
        }
    }
}

// A bar, or a piece of one, from one value to another, with its area in the image map.
void PngChart::PlotBar(double from, double to, const ChartValue& value, double low, double high) {
    if (!value.present || value.number <= 0) return;
    const int left = static_cast<int>(std::floor(from));
    // Bars beside one another are parted by a pixel when there is room for it.
    const int right = std::max(static_cast<int>(std::floor(to)) - (to - from >= 4 ? 2 : 1), left);
    const int bottom = y_origin + scale_.Pixels(low, height_chart) + 1;
    int top = y_origin + scale_.Pixels(high, height_chart);
    // What is not nothing is seen, if it is only a pixel.
    if (top < bottom && low == 0) top = bottom;
    if (top < bottom) return;
    // Pieces upon one another are parted by a pixel of the ground.
    const int drawnTop = !stacks_.empty() && top - bottom >= 3 ? top - 1 : top;
    if (IsType("bar_glass") && right - left >= kSmallestGlass && top - bottom >= kSmallestGlass) {
        for (int x = left; x <= right; ++x)
            Line(x, bottom, x, drawnTop,
                 GlassShade(value.rgb, (x - left + 0.5) / (right - left + 1)));
        const unsigned edge = Mix(value.rgb, 0x000000, 0.25);
        Line(left, drawnTop, right, drawnTop, Mix(value.rgb, 0xFFFFFF, 0.35));
        Line(left, bottom, left, drawnTop, edge);
        Line(right, bottom, right, drawnTop, edge);
    } else {
        Fill(left, bottom, right, drawnTop, value.rgb);
    }
    AddRectangle(left, bottom, right, top, value);
}

void PngChart::AddRectangle(int left, int bottom, int right, int top, const ChartValue& value) {
    const UString link = GetLink(value);
    if (link.IsEmpty()) return;
    // An image map counts from the upper left corner.
    UString area;
    area.Format("<area shape=\"rect\" coords=\"%d,%d,%d,%d\" href=\"%s\" >\n", left - 1,
                height - top, right, height - bottom + 1, link.c_str());
    areas_ += area.c_str();
}
