#include "portal/report/ReportPeriod.h"

#include <doctest/doctest.h>

#include <string>

TEST_CASE("the week's settings are converted to the server's numbering, nonsense is ignored") {
    const struct {
        const char* startDay;
        const char* length;
        int firstDay;
        int days;
    } cases[] = {
        {"1", "5", 2, 5}, {"6", "7", 7, 7},     {"7", "1", 1, 1}, {"0", "0", 2, 7},
        {"8", "8", 2, 7}, {"Monday", "", 2, 7}, {"", "-5", 2, 7}, {"1) --", "5x", 2, 7},
    };
    for (const auto& c : cases) {
        CAPTURE(c.startDay);
        ReportWeek week;
        week.SetStartDay(c.startDay);
        week.SetLength(c.length);
        CHECK(week.firstDay == c.firstDay);
        CHECK(week.length == c.days);
    }
}

TEST_CASE("every period of the form is understood, the date fields' choice is the twelfth") {
    const auto options = PeriodOptions();
    REQUIRE(options.size() == 18);
    CHECK(std::string(options[11].keyword) == "custom");
    for (const PeriodOption& option : options) {
        CAPTURE(option.keyword);
        // Only an unknown keyword has the title "On: ...".
        const bool known = KeywordPeriod(option.keyword, {}).shape != PeriodSql::kOneDate;
        CHECK(known == (std::string(option.keyword) != "custom"));
    }
}

TEST_CASE("a time of day is four digits of a real time, else the default") {
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {"0830", "08:30"}, {"0000", "00:00"}, {"2359", "23:59"}, {"830", "def"}, {"08:30", "def"},
        {"2400", "def"},   {"0960", "def"},   {"' OR", "def"},   {"", "def"},    {"9999", "def"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        CHECK(hhmmToTime(c.text, "def") == c.expected);
    }
}
