#include "portal/report/ReportCell.h"

#include <doctest/doctest.h>

TEST_CASE("cells show raw values in their column's style") {
    const struct {
        ReportStyle style;
        const char* raw;
        const char* shown;
    } cases[] = {
        {ReportStyle::kText, "R&D <Labs>", "R&amp;D &lt;Labs&gt;"},
        {ReportStyle::kText, "", ""},
        {ReportStyle::kDate, "2024-02-29", "2024-02-29"},
        {ReportStyle::kNumber, "1204", "1204"},
        {ReportStyle::kNumber, "", "-"},
        {ReportStyle::kTime, "0", "0:00:00"},
        {ReportStyle::kTime, "59", "0:00:59"},
        {ReportStyle::kTime, "3661", "1:01:01"},
        {ReportStyle::kTime, "-61", "-0:01:01"},
        {ReportStyle::kTime, "439204", "122:00:04"},
        {ReportStyle::kTime, "59.5", "0:01:00"},
        {ReportStyle::kTime, "", "-"},
        {ReportStyle::kMoney, "12", "12.00"},
        {ReportStyle::kMoney, "0.0050", "0.01"},
        {ReportStyle::kMoney, "-0.0050", "-0.01"},
        {ReportStyle::kMoney, "-0.0049", "0.00"},
        {ReportStyle::kMoney, "9999999999.9949", "9999999999.99"},
        {ReportStyle::kPercent, "66.6667", "66.7%"},
        {ReportStyle::kPercent, "100.0000", "100.0%"},
        {ReportStyle::kPercent, "99.95", "100.0%"},
        // What is no number is shown as it came, escaped.
        {ReportStyle::kTime, "<b>", "&lt;b&gt;"},
        {ReportStyle::kMoney, "1e3", "1e3"},
        {ReportStyle::kMoney, "1.2.3", "1.2.3"},
        {ReportStyle::kPercent, "-", "-"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.raw);
        std::string out = "|";
        AppendReportCell(out, c.style, c.raw);
        CHECK(out == std::string("|") + c.shown);
    }
}

TEST_CASE("totals drop needless zeros and keep every digit of a huge sum") {
    const struct {
        ReportStyle style;
        const char* number;
        const char* shown;
    } cases[] = {
        {ReportStyle::kNumber, "0", "0"},
        {ReportStyle::kNumber, "-1200.0000", "-1200"},
        {ReportStyle::kNumber, "1.2500", "1.25"},
        {ReportStyle::kNumber, "0.00004999", "0"},
        {ReportStyle::kNumber, "0.00005", "0.0001"},
        {ReportStyle::kNumber, "9223372036854775807", "9223372036854775807"},
        {ReportStyle::kMoney, "-9223372036854775807.125", "-9223372036854775807.13"},
        {ReportStyle::kTime, "9223372036854775807", "2562047788015215:30:07"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.number);
        ReportDecimal value;
        REQUIRE(ParseReportDecimal(c.number, value));
        std::string out;
        AppendReportDecimal(out, c.style, value);
        CHECK(out == c.shown);
    }
    ReportDecimal untouched;
    for (const char* text : {"", "-", ".5", "+1", " 1", "1 ", "0x1", "12345678901234567890"})
        CHECK_FALSE(ParseReportDecimal(text, untouched));
}

TEST_CASE("styles are found by name") {
    ReportStyle style;
    REQUIRE(ParseReportStyle("", style));
    CHECK(style == ReportStyle::kText);
    REQUIRE(ParseReportStyle("percent", style));
    CHECK(style == ReportStyle::kPercent);
    CHECK_FALSE(ParseReportStyle("Percent", style));
}
