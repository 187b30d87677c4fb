#include "common/Parse.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace {

// True when `text` has the form of `shape`, in which '0' stands for any digit.
bool HasShape(const char* text, std::string_view shape) {
    if (text == nullptr || std::strlen(text) != shape.size()) return false;
    for (size_t i = 0; i < shape.size(); ++i)
        if (shape[i] == '0' ? !IsDigit(text[i]) : text[i] != shape[i]) return false;
    return true;
}

// The number that the `count` digits at `text` write.
int Number(const char* text, int count) {
    int number = 0;
    for (int i = 0; i < count; ++i)
        number = number * 10 + (text[i] - '0');
    return number;
}

int DaysOf(int year, int month) {
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return kDays[month - 1] + (month == 2 && leap ? 1 : 0);
}

// Of ten characters in the form yyyy-MM-dd.
bool IsRealDay(const char* text) {
    const int year = Number(text, 4);
    const int month = Number(text + 5, 2);
    const int day = Number(text + 8, 2);
    return year >= 1 && month >= 1 && month <= 12 && day >= 1 && day <= DaysOf(year, month);
}

}  // namespace

bool ParseInt64(const char* text, int64_t& out) {
    if (text == nullptr) return false;
    // from_chars knows no plus sign.
    if (*text == '+' && IsDigit(text[1])) ++text;
    int64_t value = 0;
    const char* end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, value);
    if (error != std::errc() || stop != end) return false;
    out = value;
    return true;
}

bool IsDigits(const char* text, size_t min, size_t max) {
    if (text == nullptr) return false;
    const size_t length = std::strlen(text);
    return length >= min && length <= max && std::strspn(text, "0123456789") == length;
}

bool IsDate(const char* text) {
    return HasShape(text, "0000-00-00") && IsRealDay(text);
}

bool IsTimestamp(const char* text) {
    return HasShape(text, "0000-00-00 00:00:00") && IsRealDay(text) && Number(text + 11, 2) < 24 &&
           Number(text + 14, 2) < 60 && Number(text + 17, 2) < 60;
}

bool IsHhmm(const char* text) {
    return HasShape(text, "0000") && Number(text, 2) < 24 && Number(text + 2, 2) < 60;
}
