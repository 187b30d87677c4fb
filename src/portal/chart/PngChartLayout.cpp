// The bands of a bar chart, and what stands in them around the plot: key, labels and legends.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "portal/chart/ChartFont.h"
#include "portal/chart/PngChart.h"

namespace {

constexpr int kPlotHeight = 200;
constexpr int kLabelSize = 8;
constexpr double kHalfRoot = 0.7071067811865476;  // sine and cosine of 45 degrees
constexpr double kPi = 3.14159265358979323846;
constexpr size_t kLongestLabel = 60;  // bytes of a label: what is longer would need too high a band
constexpr int kMostLabels = 200;
constexpr double kReadableSlot = 50;  // pixels
constexpr double kOverhang = 0.95;
constexpr unsigned kTextColour = 0x303030;
constexpr unsigned kTickColour = 0x909090;

constexpr int kKeySize = 8;
constexpr int kKeyRow = 12;
constexpr int kKeyExtra = 19;  // swatch, gap and what parts an entry from the next
constexpr int kSwatch = 9;
constexpr int kSwatchGap = 4;
constexpr int kMostKeyRows = 2;

// Long labels end in an ellipsis, at the end of a UTF-8 character.
UString LabelText(const char* text) {
    size_t length = strlen(text);
    if (length <= kLongestLabel) return text;
    length = kLongestLabel;
    while (length > 0 && (text[length] & 0xC0) == 0x80)
        --length;
    UString cut;
    cut.Append(text, length);
    return cut += "\xE2\x80\xA6";
}

}  // namespace

void PngChart::BarChartGetHeights() {
    BuildTitle();
    if (xlegend_text != nullptr) height_x_legend = xlegend_text->Height() + 2 * x_legend_margin;
    ReadXLabels();
    height_x_labels = MaxHeightXLabel();
    if (xaxis != nullptr)
        height_x_ticks =
            static_cast<int>(std::clamp(ChartNumberOf(xaxis->Find("tick-height"), 0), 0.0, 100.0));
    BuildKeys();
    height_keys = (key_padding + kKeyRow) * key_rows + key_padding;
    height_chart = kPlotHeight;
    height = height_keys + height_title + height_x_ticks + height_chart + height_x_labels +
             height_x_legend;
    y_origin = height_x_legend + height_x_labels + height_x_ticks;
}

void PngChart::ReadXLabels() {
    const JsonObj* axis = xaxis != nullptr ? xaxis->Find("labels") : nullptr;
    if (axis == nullptr) return;
    const char* rotate = axis->String("rotate");
    rotation_ = strcmp(rotate, "vertical") == 0   ? Rotation::kVertical
                : strcmp(rotate, "diagonal") == 0 ? Rotation::kDiagonal
                                                  : Rotation::kHorizontal;
    const JsonObj* list = axis->Find("labels");
    if (list == nullptr || list->type != JsonObj::kArray) return;
    const char* font = rotation_ == Rotation::kVertical ? kLuxiPath : kVeraPath;
    for (const JsonObj& entry : list->values) {
        if (labels_.size() == kMaxChartValues) break;
        Label& label = labels_.emplace_back();
        label.text = LabelText(*entry.String() != '\0' ? entry.String() : entry.String("text"));
        const double told = ChartNumberOf(entry.Find("size"), kLabelSize + 2);
        label.size = static_cast<int>(std::clamp(told - 2, 1.0, double{ChartFont::kMaxSize}));
        label.width = png.get_text_width(font, label.size, label.text.c_str());
    }
    slots_ = std::max(slots_, labels_.size());
}

int PngChart::MaxHeightXLabel() const {
    int highest = 0;
    for (const Label& label : labels_) {
        const int needed = rotation_ == Rotation::kVertical ? label.width
                           : rotation_ == Rotation::kDiagonal
                               ? static_cast<int>((label.width + label.size) * kHalfRoot)
                               : label.size;
        highest = std::max(highest, needed);
    }
    return highest;
}

void PngChart::BuildKeys() {
    key_list = std::make_unique<OSList<ChartKey>>();
    int sum = key_indent;
    for (const ChartKeyEntry& entry : keyEntries_) {
        auto key = std::make_unique<ChartKey>();
        key->text = LabelText(entry.text);
        key->rgb = entry.rgb;
        key->width = kKeyExtra + png.get_text_width(kVeraPath, kKeySize, key->text.c_str());
        sum += key->width;
        key_list->Append(key.release());
    }
    key_rows = sum >= width ? kMostKeyRows : sum > key_indent ? 1 : 0;
}

// How many rows the entries take when none is wider than `most`.
int PngChart::RowsOfKeys(int most) const {
    int rows = 1, x = key_indent;
    for (const ChartKey& key : *key_list) {
        const int needed = std::min(key.width, most);
        if (x + needed > width && x > key_indent) {
            ++rows;
            x = key_indent;
        }
        x += needed;
    }
    return rows;
}

// Entries that the rows have no room for are narrowed, the widest first.
void PngChart::PlotKeys() {
    if (key_rows == 0) return;
    int most = width - key_indent;
    while (most > 2 * kKeyExtra && RowsOfKeys(most) > key_rows)
        --most;
    ChartFont& font = ChartFont::Open(kVeraPath);
    int x = key_indent, row = 1;
    for (const ChartKey& key : *key_list) {
        const int needed = std::min(key.width, most);
        if (x + needed > width && x > key_indent) {
            x = key_indent;
            if (++row > key_rows) break;
        }
        const int y = height - height_title - row * (key_padding + kKeyRow) + kKeyRow / 2;
        Fill(x, y, x + kSwatch - 1, y + kSwatch - 1, key.rgb);
        const UString text = font.Shorten(key.text.c_str(), kKeySize, needed - kKeyExtra);
        Write(kVeraPath, kKeySize, x + kSwatch + kSwatchGap, y, 0, text.c_str(), kTextColour);
        x += needed;
    }
}

void PngChart::PlotLegends() {
    if (xlegend_text != nullptr)
        xlegend_text->Plot(x_origin + (plotWidth_ - xlegend_text->Width()) / 2, x_legend_margin, 0);
    if (ylegend_text != nullptr)
        ylegend_text->Plot(ylegend_text->Height() + x_legend_margin / 2 + 1,
                           y_origin + (height_chart - ylegend_text->Width()) / 2, kPi / 2);
}

// Every how many points there is a label, so that none runs into the next.
int PngChart::LabelStride() const {
    const double slot = static_cast<double>(plotWidth_) / static_cast<double>(slots_);
    const int most = static_cast<int>((labels_.size() + kMostLabels - 1) / kMostLabels);
    // Where there is room for the beginning of each name, shortening tells more than leaving out.
    if (rotation_ == Rotation::kHorizontal && slot >= kReadableSlot) return most;
    double needed = 1;
    for (const Label& label : labels_) {
        const int across = rotation_ == Rotation::kHorizontal ? label.width + label.size
                           : rotation_ == Rotation::kVertical ? label.size * 3 / 2
                                                              : label.size * 2;
        needed = std::max<double>(needed, across);
    }
    // A label may be a little wider than its room when its neighbours are narrow.
    return std::max(most, static_cast<int>(std::ceil(needed / slot * kOverhang)));
}

void PngChart::PlotXLabels() {
    if (labels_.empty()) return;
    const size_t stride = static_cast<size_t>(LabelStride());
    for (size_t i = 0; i < labels_.size(); i += stride) {
        const double middle = Slot(static_cast<double>(i) + 0.5);
        const int x = static_cast<int>(middle);
        if (height_x_ticks > 1)
            Line(x, y_origin - height_x_ticks + 1, x, y_origin - 1, kTickColour);
        PlotXLabel(labels_[i], middle, static_cast<int>(plotWidth_ * stride / slots_));
    }
}

// `room` is what there is to the next label.
void PngChart::PlotXLabel(const Label& label, double middle, int room) {
    const int x = static_cast<int>(middle), below = y_origin - height_x_ticks;
    if (rotation_ == Rotation::kVertical) {
        Write(kLuxiPath, label.size, x + label.size / 2, below - label.width - 1, kPi / 2,
              label.text.c_str(), kTextColour);
        return;
    }
    ChartFont& font = ChartFont::Open(kVeraPath);
    if (rotation_ == Rotation::kHorizontal) {
        const UString text = font.Shorten(label.text.c_str(), label.size,
                                          std::min(std::max(room, label.size), width - 2));
        const int needed = font.Width(text.c_str(), label.size);
        const int left = std::clamp(x - needed / 2, 1, std::max(width - needed, 1));
        Write(kVeraPath, label.size, left, below - label.size - 1, 0, text.c_str(), kTextColour);
        return;
    }
    // The end of the text stands under the point, its beginning not beyond the picture's edge.
    const int end = x + label.size / 2;
    const UString text = font.Shorten(label.text.c_str(), label.size,
                                      static_cast<int>((end - label.size) / kHalfRoot));
    const double length = font.Width(text.c_str(), label.size) * kHalfRoot;
    Write(kVeraPath, label.size, end - static_cast<int>(length),
          below - static_cast<int>(length + label.size * kHalfRoot), kPi / 4, text.c_str(),
          kTextColour);
}
