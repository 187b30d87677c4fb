#include "portal/chart/ChartText.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "portal/chart/ChartFont.h"
#include "portal/chart/ChartScale.h"
#include "portal/chart/PieLabels.h"
#include "unit/portal/chart/DrawnChart.h"

TEST_CASE("a style's value is found by its whole key") {
    const struct {
        const char* style;
        const char* key;
        bool found;
        const char* value;
    } cases[] = {
        {"{font-size: 20px; color:#000000; font-family: Verdana;}", "font-size", true, "20px"},
        {"{font-size: 20px; color:#000000; font-family: Verdana;}", "color", true, "#000000"},
        {"{font-size: 20px; font-family: Bitstream Vera;}", "font-family", true, "Bitstream Vera"},
        {"background-color: #fff; color: #000", "color", true, "#000"},
        {"background-color: #fff;", "color", false, ""},
        {"colour: #fff;", "color", false, ""},
        {"color", "color", false, ""},
        {"color:", "color", true, ""},
        {"color : #000 }", "color", true, "#000"},
        {"a:b:c;", "a", true, "b:c"},
        {"color: #1; color: #2;", "color", true, "#1"},
        {";;:;{}", "color", false, ""},
        {"", "", false, ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.style);
        UString value("before");
        CHECK(GetStyle(c.style, c.key, value) == c.found);
        CHECK(value == c.value);
    }
}

TEST_CASE("a text takes size, colour and font from its style") {
    const struct {
        const char* member;
        int asked;
        int size;
        unsigned rgb;
        const char* font;
    } cases[] = {
        {"{'text': 'x', 'style': '{font-size: 20px; color: #0000BC; font-family: Verdana;}'}", 0,
         14, 0x0000BC, "Verdana"},
        {"{'text': 'x', 'style': '{font-size: 12px;}'}", 0, 8, 0x00FF00, ""},
        {"{'text': 'x', 'style': '{font-size: 12px;}'}", 11, 11, 0x00FF00, ""},
        {"{'text': 'x', 'style': 'color: black'}", 0, 18, 0x00FF00, ""},
        {"{'text': 'x', 'style': 7}", 0, 18, 0x00FF00, ""},
        {"{'text': 7, 'style': 'font-size: 20px; color: #0000BC'}", 0, 18, 0x00FF00, ""},
        {"{'text': 'x', 'style': 'font-size: -5px'}", 0, 1, 0x00FF00, ""},
        {"{'text': 'x', 'style': 'font-size: 99999999999999px'}", 0, 200, 0x00FF00, ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.member);
        std::string text = c.member;
        std::replace(text.begin(), text.end(), '\'', '"');
        JsonObj member(text.data(), nullptr, 0);
        const ChartText styled(nullptr, &member, c.asked);
        CHECK(styled.Height() == c.size);
        CHECK(styled.rgb == c.rgb);
        CHECK(styled.font == c.font);
    }
}

TEST_CASE("a text's width grows with its letters and its size, and shortening keeps within it") {
    ChartFont& font = ChartFont::Open(kVeraPath);
    CHECK(font.Width("", 8) == 0);
    CHECK(font.Width("mm", 8) > font.Width("ii", 8));
    const int hundred = font.Width("Calls by user", 100);
    CHECK(std::abs(font.Width("Calls by user", 10) * 10 - hundred) <= 10);
    CHECK(&ChartFont::Open("/no/such/font.ttf") != &font);
    CHECK(ChartFont::Open("/no/such/font.ttf").Width("Calls by user", 100) == hundred);
    // A letter that Vera lacks comes from another font, and broken bytes have a width too.
    CHECK(font.Width("\xD0\x96", 8) > 0);
    CHECK(font.Width("\xFF\xC3", 8) > 0);
    CHECK(font.Width(std::string(100000, 'm').c_str(), 8) ==
          font.Width(std::string(ChartFont::kMaxLetters, 'm').c_str(), 8));

    CHECK(font.Shorten("Sales", 8, 500) == "Sales");
    const UString cut = font.Shorten("Customer Support", 8, 60);
    CHECK(std::string(cut.c_str()).starts_with("Cust"));
    CHECK(std::string(cut.c_str()).ends_with("\xE2\x80\xA6"));
    CHECK(font.Width(cut.c_str(), 8) <= 60);
}

TEST_CASE("an axis has round steps, or those it is told") {
    const double none = std::nan("");
    const struct {
        double largest, max, step;
        int most;
        double gotStep, gotTop;
        int labels;
    } cases[] = {
        {87, none, none, 20, 20, 100, 6},
        {87, 100, 20, 20, 20, 100, 6},
        {87, 105, 10, 20, 10, 110, 12},
        {0, none, none, 20, 1, 1, 2},
        {0, 0, 5, 20, 5, 5, 2},
        {3, none, none, 20, 1, 3, 4},
        {0.4, none, none, 20, 0.1, 0.4, 5},
        {10, 10, 1, 6, 2, 10, 6},
        {1e9, 2e9, 1, 11, 2e8, 2e9, 11},
        {100, 100, 1000, 20, 1000, 1000, 2},
    };
    for (const auto& c : cases) {
        CAPTURE(c.largest);
        CAPTURE(c.max);
        const ChartScale scale = MakeChartScale(c.largest, c.max, c.step, c.most);
        CHECK(scale.step == doctest::Approx(c.gotStep));
        CHECK(scale.top == doctest::Approx(c.gotTop));
        CHECK(scale.labels == c.labels);
    }
    const ChartScale scale = MakeChartScale(100, 100, 20, 20);
    CHECK(scale.Pixels(50, 200) == 100);
    CHECK(scale.Pixels(1e300, 200) == 200);
}

TEST_CASE("figures are written as readers know them") {
    const struct {
        double value, step;
        bool isTime;
        const char* text;
    } cases[] = {
        {0, 1, false, "0"},
        {999, 1, false, "999"},
        {1000, 200, false, "1,000"},
        {1234567, 1, false, "1,234,567"},
        {0.5, 0.5, false, "0.5"},
        {1234.25, 0.25, false, "1,234.25"},
        {3, 1e-9, false, "3.000"},
        {3725, 60, true, "01:02:05"},
        {360000, 1, true, "100:00:00"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        CHECK(ChartNumber(c.value, c.step, c.isTime) == c.text);
    }
}

TEST_CASE("labels beside a pie keep apart, in order and within their room") {
    const struct {
        const char* what;
        std::vector<double> wanted, placed;
    } cases[] = {
        {"room enough", {90, 50, 10}, {90, 50, 10}},
        {"two too near part to both sides", {52, 50}, {56, 46}},
        {"what parts joins its neighbour", {60, 52, 50}, {64, 54, 44}},
        {"no higher than the top", {120, 110}, {100, 90}},
        {"no lower than the bottom", {5, 2, -3}, {20, 10, 0}},
        {"none", {}, {}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const std::vector<double> placed = SpreadPieLabels(c.wanted, 10, 0, 100);
        REQUIRE(placed.size() == c.placed.size());
        for (size_t i = 0; i < placed.size(); ++i)
            CHECK(placed[i] == doctest::Approx(c.placed[i]));
    }
    CHECK(PieLabelRoom(10, 0, 100) == 11);
    CHECK(PieLabelRoom(10, 0, -1) == 0);
}
