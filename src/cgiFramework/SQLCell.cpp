#include "cgiFramework/SQLCell.h"

#include "common/Parse.h"

namespace {

constexpr struct {
    std::string_view name;
    const char* cssClass;
} kStyles[] = {
    // in the order of SQLStyle
    {"text", "text"},     {"number", "number"}, {"date", "date"},
    {"duration", "time"}, {"flag", "text"},
};

constexpr struct {
    int64_t seconds;
    const char* name;
} kUnits[] = {{86400, " d"}, {3600, " h"}, {60, " min"}, {1, " s"}};

std::string DurationText(int64_t seconds) {
    if (seconds == 0) return "0 s";
    std::string text;
    for (const auto& unit : kUnits) {
        const int64_t count = seconds / unit.seconds;
        seconds %= unit.seconds;
        if (count == 0) continue;
        if (!text.empty()) text += ' ';
        text += std::to_string(count) + unit.name;
    }
    return text;
}

}  // namespace

bool ParseSQLStyle(std::string_view name, SQLStyle& style) {
    for (size_t i = 0; i < std::size(kStyles); ++i) {
        if (kStyles[i].name != name) continue;
        style = static_cast<SQLStyle>(i);
        return true;
    }
    return false;
}

const char* SQLStyleClass(SQLStyle style) {
    return kStyles[static_cast<size_t>(style)].cssClass;
}

std::string SQLCellText(SQLStyle style, std::string_view value) {
    const std::string text(value);
    int64_t number = 0;
    if (style == SQLStyle::kFlag) return text.empty() || text == "0" ? "" : "Yes";
    if (style == SQLStyle::kDuration && ParseInt64(text.c_str(), number) && number >= 0)
        return DurationText(number);
    return text;
}
