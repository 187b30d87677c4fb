#include "portal/chart/ChartText.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "cgiFramework/JsonObj.h"
#include "common/Path.h"
#include "portal/chart/ChartFont.h"
#include "portal/chart/PngChart.h"

namespace {

constexpr char kVerdanaPath[] = "/Library/Fonts/Verdana.ttf";
constexpr unsigned kRgbMask = 0xFFFFFF;

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n{}";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

bool GetStyle(const char* style, const char* key, UString& value) {
    value = "";
    std::string_view left = style;
    while (!left.empty()) {
        const std::string_view pair = left.substr(0, left.find(';'));
        left.remove_prefix(std::min(pair.size() + 1, left.size()));
        const size_t colon = pair.find(':');
        if (colon == std::string_view::npos || Trimmed(pair.substr(0, colon)) != key) continue;
        value = std::string(Trimmed(pair.substr(colon + 1))).c_str();
        return true;
    }
    return false;
}

ChartText::ChartText(PngChart* chart_, JsonObj* member, int size) : chart(chart_) {
    if (size != 0) fontsize = std::clamp(size, 1, ChartFont::kMaxSize);
    if (member == nullptr) return;
    text = member->Find("text");
    style = member->Find("style");
    if (text == nullptr || text->type != JsonObj::kString) text = nullptr;
    if (text != nullptr && style != nullptr && style->type == JsonObj::kString)
        ReadStyle(/*readsSize=*/size == 0);
}

void ChartText::ReadStyle(bool readsSize) {
    UString value;
    if (readsSize && GetStyle(style->String(), "font-size", value)) {
        const long pixels = std::clamp(strtol(value.c_str(), nullptr, 10), 0L, 10000L);
        fontsize = std::clamp(static_cast<int>(pixels * 7 / 10), 1, ChartFont::kMaxSize);
    }
    if (GetStyle(style->String(), "color", value) && value[0] == '#')
        rgb = static_cast<unsigned>(strtoul(value.c_str() + 1, nullptr, 16)) & kRgbMask;
    GetStyle(style->String(), "font-family", font);
    if (font == "Verdana" && access(RootPath(kVerdanaPath).c_str(), R_OK) == 0)
        fontpath = kVerdanaPath;
}

const char* ChartText::String() const {
    return text != nullptr ? text->String() : "";
}

int ChartText::Width() const {
    return chart->png.get_text_width(fontpath.c_str(), fontsize, String());
}

void ChartText::Plot(int x, int y, double angle) {
    chart->Write(fontpath.c_str(), fontsize, x, y, angle, String(), rgb);
}
