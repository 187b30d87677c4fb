#include "portal/report/ReportPeriod.h"

#include <doctest/doctest.h>

#include <string>

TEST_CASE("each period is told to the server in its own words") {
    const ReportWeek mondays{2, 5};
    const struct {
        const char* keyword;
        const char* start;
        const char* end;
        const char* title;
    } cases[] = {
        {"today", "DATE(NOW())", "DATE(NOW())", "S (Today)"},
        {"yesterday", "DATE(NOW() - INTERVAL 1 day)", "DATE(NOW() - INTERVAL 1 day)",
         "S (Yesterday)"},
        {"thismonth", "DATE_FORMAT(NOW(),'%Y-%m-01')", "DATE(NOW())",
         "From: S, To: E (This Month)"},
        {"thisyear", "DATE_FORMAT(NOW(),'%Y-01-01')", "DATE(NOW())", "From: S, To: E (This Year)"},
        {"lastmonth", "DATE_FORMAT(DATE_SUB(NOW(), INTERVAL 1 MONTH),'%Y-%m-01')",
         "DATE_FORMAT(NOW(),'%Y-%m-01')  - INTERVAL 1 day", "From: S, To: E (Last Month)"},
        {"lastyear", "DATE_FORMAT(DATE_SUB(NOW(), INTERVAL 1 YEAR),'%Y-01-01')",
         "DATE_FORMAT(NOW(),'%Y-01-01') - INTERVAL 1 day", "From: S, To: E (Last Year)"},
        {"7days", "DATE(NOW() - INTERVAL 6 day)", "DATE(NOW())", "From: S, To: E (Last 7 Days)"},
        {"30days", "DATE(NOW() - INTERVAL 29 day)", "DATE(NOW())", "From: S, To: E (Last 30 Days)"},
        {"60days", "DATE(NOW() - INTERVAL 59 day)", "DATE(NOW())", "From: S, To: E (Last 60 Days)"},
        {"90days", "DATE(NOW() - INTERVAL 89 day)", "DATE(NOW())", "From: S, To: E (Last 90 Days)"},
        {"p7days", "DATE(NOW() - INTERVAL 7 day)", "DATE(NOW() - INTERVAL 1 day)",
         "From: S, To: E (Previous 7 Days)"},
        {"p90days", "DATE(NOW() - INTERVAL 90 day)", "DATE(NOW() - INTERVAL 1 day)",
         "From: S, To: E (Previous 90 Days)"},
        {"thisweek",
         "(DATE(NOW() - INTERVAL (DAYOFWEEK(NOW()) - 2 + IF(DAYOFWEEK(NOW())<2,7,0)) DAY))",
         "DATE(NOW())", "From: S, To: E (This Week)"},
        {"lastweek",
         "(DATE(NOW() - INTERVAL + 7 + (DAYOFWEEK(NOW()) - 2 + IF(DAYOFWEEK(NOW())<2,7,0)) DAY))",
         "(DATE(NOW() - INTERVAL + 8 + (DAYOFWEEK(NOW()) - 2 + IF(DAYOFWEEK(NOW())<2,7,0)) DAY"
         " + INTERVAL 5 DAY))",
         "From: S, To: E (Last Week)"},
        {"all", "0", "DATE(NOW())", "Since Logging Began"},
        {"custom", "DATE(NOW())", "DATE(NOW())", "On: S (Today)"},
        {"LASTMONTH", "DATE(NOW())", "DATE(NOW())", "On: S (Today)"},
        {"", "DATE(NOW())", "DATE(NOW())", "On: S (Today)"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.keyword);
        const PeriodSql period = KeywordPeriod(c.keyword, mondays);
        CHECK(period.start == c.start);
        CHECK(period.end == c.end);
        CHECK(period.Title("S", "E") == c.title);
        CHECK(period.Condition() ==
              std::string(" BETWEEN ") + c.start + " AND TIMESTAMP(" + c.end + ",'23:59:59') ");
    }
}

TEST_CASE("given dates are whole days, or points in time of a wallboard's day") {
    const PeriodSql day = ExplicitPeriod("2024-03-15", "", /*exact=*/false);
    CHECK(day.Condition() ==
          " BETWEEN DATE('2024-03-15') AND TIMESTAMP(DATE('2024-03-15'),'23:59:59') ");
    CHECK(day.Title("2024-03-15", "2024-03-15") == "On: 2024-03-15");

    const PeriodSql range = ExplicitPeriod("2024-03-01", "2024-03-15", /*exact=*/false);
    CHECK(range.Condition() ==
          " BETWEEN DATE('2024-03-01') AND TIMESTAMP(DATE('2024-03-15'),'23:59:59') ");
    CHECK(range.Title("a", "b") == "From: a, To: b");

    const PeriodSql exact = ExplicitPeriod("2024-03-01 08:00:00", "2024-03-02 07:59:59", true);
    CHECK(exact.Condition() == " BETWEEN '2024-03-01 08:00:00' AND '2024-03-02 07:59:59' ");
    CHECK(exact.Title("a", "b") == "From: a, To: b (Wallboard Day)");
}

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
