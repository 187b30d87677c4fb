#include "portal/chart/ChartValues.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "common/ThrowText.h"

namespace {

bool IsGap(const JsonObj& node) {
    return node.type == JsonObj::kNull;
}

// A number that can be drawn.
void SetNumber(ChartValue& value, const JsonObj& node) {
    if (node.type != JsonObj::kNumber || !std::isfinite(node.number))
        ThrowText("element0 value not number");
    if (node.number < 0) ThrowText("element0 value is negative");
    value.present = true;
    value.number = node.number;
}

unsigned ElementColour(const JsonObj& element) {
    const JsonObj* colour = element.Find("colour");
    if (colour == nullptr || colour->type != JsonObj::kString)
        ThrowText("missing elements colour string");
    unsigned rgb = 0;
    if (!ReadChartColour(colour->String(), rgb)) ThrowText("element0 colour format error");
    return rgb;
}

void SetOwnTexts(ChartValue& value, const JsonObj& node) {
    value.text = node.String("text");
    value.label = node.String("label");
    value.onClick = node.String("on-click");
}

// Answers whether the value names its colour.
bool SetOwnColour(ChartValue& value, const JsonObj& node) {
    const JsonObj* colour = node.Find("colour");
    if (colour == nullptr) return false;
    if (!ReadChartColour(colour->String(), value.rgb)) ThrowText("element0 colour format error");
    return true;
}

// A number, null, or an object that holds one. Answers whether it names its colour.
bool ReadValue(const JsonObj& node, ChartValue& value) {
    if (IsGap(node)) return false;
    if (node.type == JsonObj::kNumber) {
        SetNumber(value, node);
        return false;
    }
    if (node.type != JsonObj::kObject) ThrowText("element0 value format error");
    const JsonObj* top = node.Find("top");
    if (top == nullptr) top = node.Find("value");  // as points of a line call it
    if (top == nullptr) ThrowText("missing top value");
    if (!IsGap(*top)) SetNumber(value, *top);
    SetOwnTexts(value, node);
    return SetOwnColour(value, node);
}

const JsonObj& ValuesOf(const JsonObj& element, bool isFirst) {
    const JsonObj* values = element.Find("values");
    if (!isFirst && (values == nullptr || values->type != JsonObj::kArray))
        ThrowText("elements values array format error");
    if (values == nullptr) ThrowText("element0 value array not found");
    if (values->type != JsonObj::kArray) ThrowText("element0 values array format error");
    return *values;
}

}  // namespace

double ChartNumberOf(const JsonObj* node, double other) {
    if (node == nullptr) return other;
    if (node->type == JsonObj::kNumber) return node->number;
    if (node->type != JsonObj::kString) return other;
    char* end = nullptr;
    const double number = strtod(node->String(), &end);
    return end != node->String() && *end == '\0' ? number : other;
}

bool ReadChartColour(const char* text, unsigned& rgb) {
    constexpr char kDigits[] = "0123456789abcdefABCDEF";
    if (*text != '#' || strlen(text) != 7 || strspn(text + 1, kDigits) != 6) return false;
    rgb = static_cast<unsigned>(strtoul(text + 1, nullptr, 16));
    return true;
}

std::vector<int> ReadChartColours(const JsonObj& element) {
    std::vector<int> colours;
    const JsonObj* list = element.Find("colours");
    if (list == nullptr) return colours;
    if (list->type != JsonObj::kArray) ThrowText("element0 colour format error");
    for (const JsonObj& entry : list->values) {
        unsigned rgb = 0;
        if (!ReadChartColour(entry.String(), rgb)) ThrowText("element0 colour format error");
        colours.push_back(static_cast<int>(rgb));
    }
    return colours;
}

void CheckChartSize(const JsonObj& elements) {
    if (elements.values.size() > kMaxChartElements)
        ThrowText("more than %zu elements in one chart", kMaxChartElements);
    size_t count = 0;
    for (const JsonObj& element : elements.values) {
        const JsonObj* values = element.Find("values");
        if (values == nullptr) continue;
        for (const JsonObj& value : values->values)
            count += std::max<size_t>(value.values.size(), 1);
    }
    if (count > kMaxChartValues) ThrowText("more than %zu values in one chart", kMaxChartValues);
}

ChartValueList ReadBarValues(const JsonObj& element, bool isFirst,
                             const std::vector<int>& colours) {
    const JsonObj& nodes = ValuesOf(element, isFirst);
    if (!colours.empty() && nodes.values.size() > colours.size())
        ThrowText("more element0 values than colours");
    const unsigned common = colours.empty() ? ElementColour(element) : 0;
    ChartValueList values;
    for (const JsonObj& node : nodes.values) {
        ChartValue& value = values.emplace_back();
        if (ReadValue(node, value)) continue;
        value.rgb = colours.empty() ? common : static_cast<unsigned>(colours[values.size() - 1]);
    }
    return values;
}

std::vector<ChartValueList> ReadStackValues(const JsonObj& element, const std::vector<int>& colours,
                                            const std::vector<ChartKeyEntry>& keys) {
    std::vector<ChartValueList> stacks;
    for (const JsonObj& node : ValuesOf(element, /*isFirst=*/true).values) {
        if (node.type != JsonObj::kArray) ThrowText("element0 value format error");
        if (!colours.empty() && node.values.size() > colours.size())
            ThrowText("more element0 values than colours");
        ChartValueList& pieces = stacks.emplace_back();
        for (const JsonObj& piece : node.values) {
            const size_t index = pieces.size();
            ChartValue& value = pieces.emplace_back();
            if (ReadValue(piece, value)) continue;
            value.rgb = !colours.empty()      ? static_cast<unsigned>(colours[index])
                        : index < keys.size() ? keys[index].rgb
                                              : ElementColour(element);
        }
    }
    return stacks;
}

ChartValueList ReadPieValues(const JsonObj& element, const std::vector<int>& colours) {
    const JsonObj* nodes = element.Find("values");
    if (nodes == nullptr || nodes->type != JsonObj::kArray)
        ThrowText("no values array in pie chart");
    const unsigned common = colours.empty() ? ElementColour(element) : 0;
    ChartValueList values;
    for (const JsonObj& node : nodes->values) {
        const size_t index = values.size();
        ChartValue& value = values.emplace_back();
        const JsonObj* number = node.Find("value");
        if (number == nullptr) ThrowText("no value for pie segment");
        const JsonObj* label = node.Find("label");
        if (label != nullptr && label->type != JsonObj::kString)
            ThrowText("element0 value label is not a string");
        if (!IsGap(*number)) SetNumber(value, *number);
        SetOwnTexts(value, node);
        if (SetOwnColour(value, node)) continue;
        value.rgb =
            colours.empty() ? common : static_cast<unsigned>(colours[index % colours.size()]);
    }
    return values;
}

std::vector<ChartKeyEntry> ReadChartKeys(const JsonObj* entries) {
    std::vector<ChartKeyEntry> keys;
    if (entries == nullptr || entries->type != JsonObj::kArray) return keys;
    for (const JsonObj& entry : entries->values) {
        if (keys.size() == kMaxChartElements) break;
        ChartKeyEntry key = {entry.String("text"), 0};
        if (*key.text != '\0' && ReadChartColour(entry.String("colour"), key.rgb))
            keys.push_back(key);
    }
    return keys;
}
