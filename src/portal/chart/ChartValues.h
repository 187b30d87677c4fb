// ChartValues.h: reads the values of a chart description and checks them.
#pragma once

#include <string>
#include <vector>

#include "cgiFramework/JsonObj.h"

// Together, of all elements: a chart of more throws a text.
inline constexpr size_t kMaxChartValues = 10000;
inline constexpr size_t kMaxChartElements =
    200;  // and entries of the key; more of these are left out

struct ChartValue {
    bool present = false;  // false: a gap, which takes its room but is not drawn
    double number = 0;     // finite, 0 or more
    unsigned rgb = 0;      // 0xRRGGBB
    const char* text = "";
    const char* label = "";
    const char* onClick = "";
};
using ChartValueList = std::vector<ChartValue>;

// An entry of the key: what a colour stands for.
struct ChartKeyEntry {
    const char* text;
    unsigned rgb;
};

// Each lives as long as the description that it was read from. A number may also be written as a
// string, as sizes are; anything else reads as `other`.
double ChartNumberOf(const JsonObj* node, double other);
// False unless the text is "#" and six hexadecimal digits.
bool ReadChartColour(const char* text, unsigned& rgb);

// The element's "colours", empty when it has none. Throws "element0 colour format error".
std::vector<int> ReadChartColours(const JsonObj& element);
// Throws a text when all elements together hold too many values.
void CheckChartSize(const JsonObj& elements);

// The values of a bar chart's element, the first or another one, and of a line's: a null is a gap.
// A value's colour is its own, else the next of `colours`, else the element's. Throws the texts
// that docs/charts.md lists.
ChartValueList ReadBarValues(const JsonObj& element, bool isFirst, const std::vector<int>& colours);
// The pieces of each bar of a stacked chart, from the bottom; `keys` colours those that nothing
// else does.
std::vector<ChartValueList> ReadStackValues(const JsonObj& element, const std::vector<int>& colours,
                                            const std::vector<ChartKeyEntry>& keys);
// The slices of a pie; a null value is a slice of no size.
ChartValueList ReadPieValues(const JsonObj& element, const std::vector<int>& colours);
// Those of `entries` that have a text and a colour.
std::vector<ChartKeyEntry> ReadChartKeys(const JsonObj* entries);
