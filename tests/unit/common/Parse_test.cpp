#include "common/Parse.h"

#include <doctest/doctest.h>

TEST_CASE("numbers are taken whole and in range or not at all") {
    const struct {
        const char* text;
        bool good;
        int64_t value;
    } cases[] = {
        {"0", true, 0},
        {"-5", true, -5},
        {"+5", true, 5},
        {"007", true, 7},
        {"9223372036854775807", true, INT64_MAX},
        {"-9223372036854775808", true, INT64_MIN},
        {"9223372036854775808", false, 0},
        {"-9223372036854775809", false, 0},
        {"99999999999999999999999999", false, 0},
        {"", false, 0},
        {"-", false, 0},
        {"+", false, 0},
        {"+-5", false, 0},
        {" 5", false, 0},
        {"5 ", false, 0},
        {"5x", false, 0},
        {"0x10", false, 0},
        {"1e3", false, 0},
        {nullptr, false, 0},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        int64_t value = 77;
        CHECK(ParseInt64(c.text, value) == c.good);
        CHECK(value == (c.good ? c.value : 77));
    }
}

TEST_CASE("shapes are checked to the last character") {
    const struct {
        bool (*check)(const char*);
        const char* text;
        bool good;
    } cases[] = {
        {IsDate, "2024-02-29", true},
        {IsDate, "2000-02-29", true},
        {IsDate, "1900-02-29", false},
        {IsDate, "2023-02-29", false},
        {IsDate, "2023-04-31", false},
        {IsDate, "2023-12-31", true},
        {IsDate, "2023-13-01", false},
        {IsDate, "2023-00-10", false},
        {IsDate, "2023-01-00", false},
        {IsDate, "0000-01-01", false},
        {IsDate, "2023-1-01", false},
        {IsDate, "2023-01-01 ", false},
        {IsDate, "2023/01/01", false},
        {IsDate, "2023-01-0'", false},
        {IsDate, nullptr, false},
        {IsTimestamp, "2024-02-29 23:59:59", true},
        {IsTimestamp, "2024-02-29 24:00:00", false},
        {IsTimestamp, "2024-02-29 23:60:00", false},
        {IsTimestamp, "2024-02-29 23:59:60", false},
        {IsTimestamp, "2024-02-30 10:00:00", false},
        {IsTimestamp, "2024-02-29", false},
        {IsTimestamp, "2024-02-29T10:00:00", false},
        {IsHhmm, "0000", true},
        {IsHhmm, "2359", true},
        {IsHhmm, "2400", false},
        {IsHhmm, "1260", false},
        {IsHhmm, "930", false},
        {IsHhmm, "09:30", false},
        {IsHhmm, "", false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        CHECK(c.check(c.text) == c.good);
    }

    CHECK(IsDigits("12345678901234567890", 1, 20));
    CHECK_FALSE(IsDigits("123456789012345678901", 1, 20));
    CHECK_FALSE(IsDigits("", 1, 20));
    CHECK_FALSE(IsDigits("12a", 1, 20));
    CHECK_FALSE(IsDigits("\xd9\xa1", 1, 20));
    CHECK_FALSE(IsDigits(nullptr, 0, 20));
}
