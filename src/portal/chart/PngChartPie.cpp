// Pies: slices, the areas of their links, and labels at both sides.
#include <algorithm>
#include <cmath>

#include "common/Html.h"
#include "portal/chart/ChartFont.h"
#include "portal/chart/ChartMask.h"
#include "portal/chart/ChartPie.h"
#include "portal/chart/PieLabels.h"
#include "portal/chart/PngChart.h"

namespace {

constexpr double kTurn = 2 * 3.14159265358979323846;
constexpr int kMargin = 18;         // above and below the disc
constexpr double kLabelPart = 0.3;  // of the picture's width: what the labels of a side may take
constexpr int kLabelSize = 8;
constexpr int kLabelGap = 15;     // from one line's base line to the next label's
constexpr int kLineGap = 13;      // to the second line of the same label
constexpr int kLeader = 18;       // pixels from the rim to a label
constexpr double kEdgeStep = 5;   // pixels of rim between two corners of an area
constexpr double kParting = 0.8;  // half the width of what parts slices
constexpr int kSamples = 4;       // a side of a pixel, where the rim or a cut passes through
constexpr unsigned kTextColour = 0x303030;
constexpr unsigned kFigureColour = 0x606060;
constexpr unsigned kLeaderColour = 0xA0A0A0;
constexpr unsigned kGround = 0xF8F8F8;
constexpr unsigned kNothing = 0xE4E4E4;

// "1,234 (12.3%)"
UString FigureText(const ChartPie::Slice& slice, bool isTime) {
    const double number = slice.value->number;
    const double step = number == std::floor(number) ? 1 : 0.01;
    const UString figure = ChartNumber(number, step, isTime);
    UString text;
    text.Format(slice.share < 1 ? "%s (%.1f%%)" : "%s (%.0f%%)", figure.c_str(), slice.share * 100);
    return text;
}

// Base lines of labels: the first of a side and the last have room for their letters.
double LabelGap(int lines) {
    return kLabelGap + kLineGap * (lines - 1);
}
double HighestLabel(const ChartPie& pie) {
    return 2 * pie.y - kLabelSize - 2;
}
double LowestLabel(int lines) {
    return kLabelSize * 0.75 + kLineGap * (lines - 1);
}
size_t RoomForLabels(const ChartPie& pie, int lines) {
    return PieLabelRoom(LabelGap(lines), LowestLabel(lines), HighestLabel(pie));
}

// The slices whose middle is at that side, from the top; of more than there is room for, the
// largest.
std::vector<const ChartPie::Slice*> SideOf(const ChartPie& pie, bool isRight, size_t room) {
    std::vector<const ChartPie::Slice*> side;
    for (const ChartPie::Slice& slice : pie.slices)
        if ((pie.X(slice.Middle(), 1) >= pie.x) == isRight) side.push_back(&slice);
    if (side.size() > room) {
        std::stable_sort(side.begin(), side.end(),
                         [](const auto* a, const auto* b) { return a->share > b->share; });
        side.resize(room);
    }
    std::stable_sort(side.begin(), side.end(), [&](const auto* a, const auto* b) {
        return pie.Y(a->Middle(), 1) > pie.Y(b->Middle(), 1);
    });
    return side;
}

}  // namespace

void PngChart::PlotPieChart() {
    const ChartValueList values = ReadPieValues(*e0, colours_);
    // Told against the clock from three o'clock, as angles are in geometry; the slices run
    // clockwise.
    const double degrees = ChartNumberOf(e0->Find("start-angle"), 0);
    ChartPie pie(values, std::isfinite(degrees) ? -std::fmod(degrees, 360) * kTurn / 360 : 0);
    pie.x = width / 2.0;
    pie.y = (height - height_title) / 2.0;
    PieLabelStyle style;
    style.room = static_cast<int>(width * kLabelPart);
    style.lines = 2;
    for (const bool isRight : {false, true})
        if (SideOf(pie, isRight, pie.slices.size()).size() > RoomForLabels(pie, style.lines))
            style.lines = 1;
    int widest = 0;
    for (const ChartPie::Slice& slice : pie.slices)
        widest = std::max(widest, LabelOf(slice, style).width);
    pie.radius = std::max(std::min(pie.y - kMargin, pie.x - widest - kLeader - kMargin / 2), 1.0);
    PlotSlices(pie);
    if (pie.slices.empty()) PlotEmpty(width / 2, static_cast<int>(pie.y));
    for (const bool isRight : {false, true})
        PlotPieLabels(pie, isRight, style);
    for (const ChartPie::Slice& slice : pie.slices)
        AddSlice(pie, slice);
}

void PngChart::PlotSlices(const ChartPie& pie) {
    // What parts the slices: a line from the middle along each cut.
    const int side = static_cast<int>(2 * pie.radius) + 4;
    const int left = static_cast<int>(pie.x - pie.radius) - 1;
    const int bottom = static_cast<int>(pie.y - pie.radius) - 1;
    ChartMask disc(left, bottom, side, side), cuts(left, bottom, side, side);
    disc.AddStroke(pie.x, pie.y, pie.x, pie.y, pie.radius);
    // Slices narrower than their parting would vanish behind it.
    const double narrowest = 4 * kParting / pie.radius / kTurn;
    for (size_t i = 0; pie.slices.size() > 1 && i < pie.slices.size(); ++i) {
        const ChartPie::Slice& slice = pie.slices[i];
        const ChartPie::Slice& before = pie.slices[i > 0 ? i - 1 : pie.slices.size() - 1];
        if (std::min(slice.share, before.share) > narrowest)
            cuts.AddStroke(pie.x, pie.y, pie.X(slice.begin, pie.radius),
                           pie.Y(slice.begin, pie.radius), kParting);
    }
    for (int y = disc.bottom(); y <= disc.top(); ++y)
        for (int x = disc.left(); x <= disc.right(); ++x) {
            if (disc.At(x, y) <= 0) continue;
            PlotSlicePixel(pie, x, y, disc.At(x, y));
            if (cuts.At(x, y) > 0) Blend(x, y, cuts.At(x, y), kGround);
        }
}

// The pixel in the colours of the slices that pass through it.
void PngChart::PlotSlicePixel(const ChartPie& pie, int x, int y, double opacity) {
    if (pie.slices.empty()) return Blend(x, y, opacity, kNothing);
    const ChartPie::Slice& first = pie.At(x - 1, y - 1);
    const bool isWhole =
        &first == &pie.At(x, y) && &first == &pie.At(x - 1, y) && &first == &pie.At(x, y - 1);
    Blend(x, y, opacity, first.value->rgb);
    if (isWhole) return;
    // Each further sample takes its share of the mean.
    for (int i = 0; i < kSamples * kSamples; ++i) {
        const double px = x - 1 + (i % kSamples + 0.5) / kSamples;
        const double py = y - 1 + (i / kSamples + 0.5) / kSamples;
        Blend(x, y, opacity / (i + 1), pie.At(px, py).value->rgb);
    }
}

PngChart::PieLabel PngChart::LabelOf(const ChartPie::Slice& slice, const PieLabelStyle& style) {
    ChartFont& font = ChartFont::Open(kVeraPath);
    PieLabel label;
    label.figures = FigureText(slice, IsTime());
    int left = style.room;
    if (style.lines == 1) {
        if (*slice.value->label != '\0') label.figures = ": " + label.figures;
        left = std::max(left - font.Width(label.figures.c_str(), kLabelSize), 0);
    }
    label.name = font.Shorten(slice.value->label, kLabelSize, left);
    if (style.lines == 1) {
        label.name += label.figures;
        label.figures = "";
    }
    label.width = std::max(font.Width(label.name.c_str(), kLabelSize),
                           font.Width(label.figures.c_str(), kLabelSize));
    return label;
}

void PngChart::PlotPieLabels(const ChartPie& pie, bool isRight, const PieLabelStyle& style) {
    const double high = HighestLabel(pie), low = LowestLabel(style.lines);
    const double gap = LabelGap(style.lines);
    const auto side = SideOf(pie, isRight, RoomForLabels(pie, style.lines));
    std::vector<double> wanted;
    for (const ChartPie::Slice* slice : side)
        wanted.push_back(pie.Y(slice->Middle(), pie.radius + kLeader / 2.0) - kLabelSize / 2.0);
    const std::vector<double> heights = SpreadPieLabels(wanted, gap, low, high);
    for (size_t i = 0; i < side.size(); ++i) {
        const double middle = side[i]->Middle();
        const PieLabel label = LabelOf(*side[i], style);
        const int outwards = isRight ? 1 : -1;
        const int y = static_cast<int>(heights[i]), line = y + kLabelSize / 2;
        const int end = static_cast<int>(pie.x + outwards * (pie.radius + kLeader - 4));
        // The leader bends outside the disc, at whatever height the label found room.
        const double aside = std::sqrt(
            std::max(std::pow(pie.radius + kLeader / 3.0, 2) - std::pow(line - pie.y, 2), 0.0));
        const double along = std::abs(pie.X(middle, pie.radius + kLeader / 2.0) - pie.x);
        const int bend = static_cast<int>(pie.x + outwards * std::max(along, aside));
        Line(static_cast<int>(pie.X(middle, pie.radius + 1)),
             static_cast<int>(pie.Y(middle, pie.radius + 1)), bend, line, kLeaderColour);
        Line(bend, line, end, line, kLeaderColour);
        const auto write = [&](const UString& text, int below, unsigned colour) {
            const int textWidth = png.get_text_width(kVeraPath, kLabelSize, text.c_str());
            Write(kVeraPath, kLabelSize, isRight ? end + 4 : end - 4 - textWidth, y - below, 0,
                  text.c_str(), colour);
        };
        write(label.name, 0, kTextColour);
        write(label.figures, kLineGap, kFigureColour);
    }
}

// The slice's area in the image map, which counts from the upper left corner.
void PngChart::AddSlice(const ChartPie& pie, const ChartPie::Slice& slice) {
    const UString link = GetLink(*slice.value), label = HtmlAttr(slice.value->label);
    if (link.IsEmpty()) return;
    const auto pixel = [](double at) { return static_cast<int>(std::lround(at)); };
    const int x = pixel(pie.x), y = height - pixel(pie.y);
    UString text;
    if (pie.slices.size() == 1) {
        text.Format("<area shape=\"circle\" coords=\"%d,%d,%d\" href=\"%s\" alt=\"%s\">\r\n", x, y,
                    pixel(pie.radius), link.c_str(), label.c_str());
        areas_ += text.c_str();
        return;
    }
    const int steps =
        std::max(static_cast<int>((slice.end - slice.begin) * pie.radius / kEdgeStep), 1);
    for (int i = 0; i <= steps; ++i) {
        const double angle = slice.begin + (slice.end - slice.begin) * i / steps;
        const int edgeX = pixel(pie.X(angle, pie.radius));
        const int edgeY = height - pixel(pie.Y(angle, pie.radius));
        if (i == 0)
            text.Format("<area shape=\"poly\" coords=\"%d,%d,%d,%d", x, y, edgeX, edgeY);
        else if (i < steps)
            text.Format(",%d,%d", edgeX, edgeY);
        else
            text.Format(",%d,%d\" href=\"%s\" alt=\"%s\" />\r\n", edgeX, edgeY, link.c_str(),
                        label.c_str());
        areas_ += text.c_str();
    }
}
