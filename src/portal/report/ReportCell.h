// ReportCell.h: how raw values of a report become the text of its cells.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

enum class ReportStyle { kText, kNumber, kTime, kMoney, kPercent, kDate };

// The style of that name, an empty name being text. False for an unknown name.
[[nodiscard]] bool ParseReportStyle(std::string_view name, ReportStyle& style);
// The style's name, which is also the class of its cells.
const char* ReportStyleName(ReportStyle style);

__extension__ typedef __int128 ReportInteger;

// An exact decimal number in units of 1/10000, so that sums of money keep every digit.
struct ReportDecimal {
    static constexpr int kScale = 10000;
    ReportInteger units = 0;
};

// In groups of three digits: "12,345".
std::string GroupedNumber(uint64_t number);

// Reads "-12.3456"; digits behind the fourth decimal round half away from zero. False for anything
// else and for more than 19 digits before the point, so that sums and ratios cannot overflow.
[[nodiscard]] bool ParseReportDecimal(std::string_view text, ReportDecimal& value);

// Appends the number as it reads in a cell: a number without needless zeros, seconds as h:mm:ss,
// money with two decimals, a percentage with one and its sign. Rounds half away from zero.
void AppendReportDecimal(std::string& out, ReportStyle style, ReportDecimal value);

// Appends a raw value, which is escaped for element content. No value (null or empty) reads as "-"
// in the numeric styles; a value that does not suit a numeric style is shown as it is.
void AppendReportCell(std::string& out, ReportStyle style, std::string_view raw);
