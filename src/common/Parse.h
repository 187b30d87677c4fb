// Parse.h: strict checks of text from outside. Each takes the whole text or refuses it: no
// blanks, nothing left over. Null is refused.
#pragma once

#include <cstddef>
#include <cstdint>

// An optional sign and decimal digits within the range of int64_t. Leaves `out` alone when false.
[[nodiscard]] bool ParseInt64(const char* text, int64_t& out);
// ASCII only, whatever the locale.
constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
// Between `min` and `max` decimal digits and nothing else.
[[nodiscard]] bool IsDigits(const char* text, size_t min, size_t max);
// A real calendar day, yyyy-MM-dd, years 0001 to 9999.
[[nodiscard]] bool IsDate(const char* text);
// "yyyy-MM-dd hh:mm:ss", hour below 24, no leap second.
[[nodiscard]] bool IsTimestamp(const char* text);
// Four digits: hour below 24, minute below 60.
[[nodiscard]] bool IsHhmm(const char* text);
