// Lines through points.
#include <algorithm>
#include <cmath>

#include "portal/chart/ChartMask.h"
#include "portal/chart/PngChart.h"

namespace {

constexpr double kStroke = 1.1;  // half a line's width
constexpr double kDot = 3.4;     // a point's radius
constexpr double kDotRoom = 10;  // pixels between points, below which there are no dots
constexpr int kAreaRadius = 6;   // of a point in the image map

}  // namespace

void PngChart::PlotLines() {
    for (const ChartValueList& values : lines_)
        PlotLine(values);
}

void PngChart::PlotLine(const ChartValueList& values) {
    // A margin for strokes and dots that stand at the plot's edges.
    constexpr int kMargin = 4;
    ChartMask mask(x_origin + 1, y_origin - kMargin, plotWidth_, height_chart + 2 * kMargin);
    const bool dotted = plotWidth_ / static_cast<double>(slots_) >= kDotRoom;
    const ChartValue* before = nullptr;
    double beforeX = 0, beforeY = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        const ChartValue& value = values[i];
        const double x = Slot(static_cast<double>(i) + 0.5);
        const double y = y_origin + std::min(value.number / scale_.top, 1.0) * height_chart;
        if (value.present) {
            // A point without neighbours would not be seen as a line.
            const bool alone =
                before == nullptr && (i + 1 == values.size() || !values[i + 1].present);
            if (before != nullptr) mask.AddStroke(beforeX, beforeY, x, y, kStroke);
            if (dotted || alone) mask.AddStroke(x, y, x, y, kDot);
            const int column = static_cast<int>(x), row = static_cast<int>(y);
            AddRectangle(column - kAreaRadius, row - kAreaRadius, column + kAreaRadius,
                         row + kAreaRadius, value);
        }
        before = value.present ? &value : nullptr;
        beforeX = x;
        beforeY = y;
    }
    if (values.empty()) return;
    for (int y = mask.bottom(); y <= mask.top(); ++y)
        for (int x = mask.left(); x <= mask.right(); ++x)
            if (const double part = mask.At(x, y); part > 0) Blend(x, y, part, values[0].rgb);
}
