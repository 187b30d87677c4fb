#include "portal/report/ReportCell.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "common/Html.h"
#include "common/Parse.h"

namespace {

// In the order of ReportStyle.
constexpr const char* kStyleNames[] = {"text", "number", "time", "money", "percent", "date"};

constexpr ptrdiff_t kMaxWholeDigits = 19;
constexpr int kDecimals = 4;  // of a ReportDecimal
constexpr int kSecondsPerMinute = 60;
constexpr int kSecondsPerHour = 3600;

// The arithmetic below is written for two widths: a cell's value fits into 64 bits, whose divisions
// by a constant cost a multiplication, and only a huge total needs the wide ones.

// value / divisor, half away from zero; the divisor is positive.
template <class Integer>
Integer DivideRounding(Integer value, int divisor) {
    const int half = divisor / 2;
    return (value < 0 ? value - half : value + half) / divisor;
}

// A figure is put together from its end in a buffer of its own and appended once.
constexpr size_t kLongestFigure = 64;

// Puts at least `width` digits of a value that is not negative in front of `at`.
template <class Integer>
char* PutDigits(char* at, Integer value, int width) {
    for (; value != 0 || width > 0; value /= 10, --width)
        *--at = static_cast<char>('0' + static_cast<int>(value % 10));
    return at;
}

// `scaled` is not negative and counts in units of 1/unit, a power of ten with as many zeros as
// `decimals` says.
template <class Integer>
char* PutFixed(char* at, Integer scaled, int unit, int decimals) {
    if (decimals > 0) {
        at = PutDigits<Integer>(at, scaled % unit, decimals);
        *--at = '.';
    }
    return PutDigits<Integer>(at, scaled / unit, 1);
}

template <class Integer>
char* PutNumber(char* at, Integer units) {
    int unit = ReportDecimal::kScale;
    int decimals = kDecimals;
    if (units % unit == 0) return PutDigits<Integer>(at, units / unit, 1);
    for (; units % 10 == 0; --decimals, unit /= 10)
        units /= 10;
    return PutFixed(at, units, unit, decimals);
}

template <class Integer>
char* PutTime(char* at, Integer seconds) {
    at = PutDigits<Integer>(at, seconds % kSecondsPerMinute, 2);
    *--at = ':';
    at = PutDigits<Integer>(at, seconds / kSecondsPerMinute % 60, 2);
    *--at = ':';
    return PutDigits<Integer>(at, seconds / kSecondsPerHour, 1);
}

template <class Integer>
void AppendUnits(std::string& out, ReportStyle style, Integer units) {
    char figure[kLongestFigure];
    char* const end = std::end(figure);
    char* at = end;
    // In the unit of the last digit shown. The sign belongs to what is left after rounding.
    int unit = 1;
    if (style == ReportStyle::kTime) unit = ReportDecimal::kScale;
    if (style == ReportStyle::kMoney) unit = ReportDecimal::kScale / 100;
    if (style == ReportStyle::kPercent) unit = ReportDecimal::kScale / 10;
    Integer shown = DivideRounding(units, unit);
    const bool negative = shown < 0;
    if (negative) shown = -shown;
    switch (style) {
        case ReportStyle::kTime:
            at = PutTime(at, shown);
            break;
        case ReportStyle::kMoney:
            at = PutFixed(at, shown, 100, 2);
            break;
        case ReportStyle::kPercent:
            *--at = '%';
            at = PutFixed(at, shown, 10, 1);
            break;
        case ReportStyle::kText:
        case ReportStyle::kNumber:
        case ReportStyle::kDate:
            at = PutNumber(at, shown);
            break;
    }
    if (negative) *--at = '-';
    out.append(at, end);
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
    const char* at = text.data();
    const char* const end = at + text.size();
    const bool negative = at != end && *at == '-';
    if (negative) ++at;

    const char* const digits = at;
    uint64_t integer = 0;  // holds any 19 digits
    for (; at != end && IsDigit(*at); ++at)
        integer = integer * 10 + static_cast<uint64_t>(*at - '0');
    if (at == digits || at - digits > kMaxWholeDigits) return false;
    ReportInteger units = static_cast<ReportInteger>(integer) * ReportDecimal::kScale;

    if (at != end) {
        if (*at++ != '.') return false;
        int scale = ReportDecimal::kScale / 10;
        const char* const decimals = at;
        for (; at != end && IsDigit(*at); ++at, scale /= 10)
            units += scale * (*at - '0');
        if (at != end) return false;
        if (end - decimals > kDecimals && decimals[kDecimals] >= '5') ++units;
    }
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
