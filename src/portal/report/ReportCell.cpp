#include "portal/report/ReportCell.h"

#include <cstdint>
#include <iterator>

#include "common/Html.h"

namespace {

// In the order of ReportStyle.
constexpr const char* kStyleNames[] = {"text", "number", "time", "money", "percent", "date"};

constexpr size_t kMaxWholeDigits = 19;
constexpr int kDecimals = 4;  // of a ReportDecimal
constexpr int kSecondsPerMinute = 60;
constexpr int kSecondsPerHour = 3600;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The arithmetic below is written for two widths: a cell's value fits into 64 bits, whose divisions
// by a constant cost a multiplication, and only a huge total needs the wide ones.

// value / divisor, half away from zero; the divisor is positive.
template <class Integer>
Integer DivideRounding(Integer value, int divisor) {
    const int half = divisor / 2;
    return (value < 0 ? value - half : value + half) / divisor;
}

// Writes at least `width` digits of a value that is not negative.
template <class Integer>
void AppendDigits(std::string& out, Integer value, int width) {
    char digits[40];
    char* at = std::end(digits);
    for (; value != 0 || width > 0; value /= 10, --width)
        *--at = static_cast<char>('0' + static_cast<int>(value % 10));
    out.append(at, std::end(digits));
}

// Takes the sign off and writes it.
template <class Integer>
Integer AppendSign(std::string& out, Integer value) {
    if (value >= 0) return value;
    out += '-';
    return -value;
}

// `scaled` counts in units of 1/unit, a power of ten with as many zeros as `decimals` says.
template <class Integer>
void AppendFixed(std::string& out, Integer scaled, int unit, int decimals) {
    scaled = AppendSign(out, scaled);
    AppendDigits<Integer>(out, scaled / unit, 1);
    if (decimals == 0) return;
    out += '.';
    AppendDigits<Integer>(out, scaled % unit, decimals);
}

template <class Integer>
void AppendNumber(std::string& out, Integer units) {
    int unit = ReportDecimal::kScale;
    int decimals = kDecimals;
    for (; decimals > 0 && units % 10 == 0; --decimals, unit /= 10)
        units /= 10;
    AppendFixed(out, units, unit, decimals);
}

template <class Integer>
void AppendTime(std::string& out, Integer seconds) {
    seconds = AppendSign(out, seconds);
    AppendDigits<Integer>(out, seconds / kSecondsPerHour, 1);
    out += ':';
    AppendDigits<Integer>(out, seconds / kSecondsPerMinute % 60, 2);
    out += ':';
    AppendDigits<Integer>(out, seconds % kSecondsPerMinute, 2);
}

template <class Integer>
void AppendUnits(std::string& out, ReportStyle style, Integer units) {
    switch (style) {
        case ReportStyle::kTime:
            AppendTime(out, DivideRounding(units, ReportDecimal::kScale));
            break;
        case ReportStyle::kMoney:
            AppendFixed(out, DivideRounding(units, ReportDecimal::kScale / 100), 100, 2);
            break;
        case ReportStyle::kPercent:
            AppendFixed(out, DivideRounding(units, ReportDecimal::kScale / 10), 10, 1);
            out += '%';
            break;
        case ReportStyle::kText:
        case ReportStyle::kNumber:
        case ReportStyle::kDate:
            AppendNumber(out, units);
            break;
    }
}

}  // namespace

bool ParseReportStyle(std::string_view name, ReportStyle& style) {
    if (name.empty()) name = kStyleNames[0];
    for (size_t i = 0; i < std::size(kStyleNames); ++i) {
        if (name != kStyleNames[i]) continue;
        style = static_cast<ReportStyle>(i);
        return true;
    }
    return false;
}

const char* ReportStyleName(ReportStyle style) {
    return kStyleNames[static_cast<size_t>(style)];
}

std::string GroupedNumber(uint64_t number) {
    std::string text = std::to_string(number);
    for (size_t at = text.size(); at > 3;)
        text.insert(at -= 3, 1, ',');
    return text;
}

bool ParseReportDecimal(std::string_view text, ReportDecimal& value) {
    const bool negative = text.starts_with('-');
    if (negative) text.remove_prefix(1);
    const size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    const std::string_view decimals =
        point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
    if (whole.empty() || whole.size() > kMaxWholeDigits) return false;

    uint64_t integer = 0;  // holds any 19 digits
    for (const char c : whole) {
        if (!IsDigit(c)) return false;
        integer = integer * 10 + static_cast<uint64_t>(c - '0');
    }
    int fraction = 0;  // in units
    for (size_t i = 0, scale = ReportDecimal::kScale / 10; i < decimals.size(); ++i, scale /= 10) {
        if (!IsDigit(decimals[i])) return false;
        fraction += static_cast<int>(scale) * (decimals[i] - '0');
    }
    if (decimals.size() > kDecimals && decimals[kDecimals] >= '5') ++fraction;
    const ReportInteger units =
        static_cast<ReportInteger>(integer) * ReportDecimal::kScale + fraction;
    value.units = negative ? -units : units;
    return true;
}

void AppendReportDecimal(std::string& out, ReportStyle style, ReportDecimal value) {
    // Half the range leaves room for rounding.
    constexpr int64_t kLimit = INT64_MAX / 2;
    if (value.units >= -kLimit && value.units <= kLimit)
        AppendUnits(out, style, static_cast<int64_t>(value.units));
    else
        AppendUnits(out, style, value.units);
}

void AppendReportCell(std::string& out, ReportStyle style, std::string_view raw) {
    if (style == ReportStyle::kText || style == ReportStyle::kDate) {
        AppendHtmlText(out, raw);
    } else if (raw.empty()) {
        out += '-';
    } else if (ReportDecimal value;
               style != ReportStyle::kNumber && ParseReportDecimal(raw, value)) {
        AppendReportDecimal(out, style, value);
    } else {
        AppendHtmlText(out, raw);
    }
}
