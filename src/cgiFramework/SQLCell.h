// SQLCell.h: how a value of the database reads in a list, whether on screen, in a file or on paper.
#pragma once

#include <string>
#include <string_view>

enum class SQLStyle { kText, kNumber, kDate, kDuration, kFlag };

// The style of that name (text, number, date, duration, flag). False for an unknown name.
[[nodiscard]] bool ParseSQLStyle(std::string_view name, SQLStyle& style);
// The class of the style's cells in the style sheet.
const char* SQLStyleClass(SQLStyle style);
// Are the style's cells set flush right?
inline bool IsRightAligned(SQLStyle style) {
    return style == SQLStyle::kNumber || style == SQLStyle::kDuration;
}

// The cell's text, not escaped. A duration is seconds and reads "1 d 2 h 30 min"; a flag that is
// not 0 reads "Yes"; what does not suit its style is shown as it is.
std::string SQLCellText(SQLStyle style, std::string_view value);
