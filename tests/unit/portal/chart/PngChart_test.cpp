#include "portal/chart/PngChart.h"

#include <doctest/doctest.h>

#include <string>

#include "unit/portal/chart/DrawnChart.h"

namespace {

// A bar chart with these members beside its one element.
std::string Bars(const std::string& more, const std::string& values = "[1, 2]") {
    return "{'elements': [{'type': 'bar_2d', 'colour': '#112233', 'values': " + values + "}]" +
           (more.empty() ? "" : ", " + more) + "}";
}

std::string Labels(const char* rotate, const std::string& text) {
    return std::string("'x_axis': {'labels': {'rotate': '") + rotate + "', 'labels': [{'text': '" +
           text + "'}]}}";
}

std::string Repeat(const std::string& text, size_t count) {
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

}  // namespace

TEST_CASE("a description that cannot be drawn is refused with its text and leaves no file") {
    const std::string bar = "'type': 'bar_glass', 'colour': '#112233'";
    const std::string stack = "'type': 'bar_stack', 'colour': '#112233'";
    const struct {
        const char* problem;
        std::string text;
    } cases[] = {
        {"elements array not found", "{}"},
        {"elements array not found", "[1, 2]"},
        {"elements array not found", "{'elements': {'type': 'pie'}}"},
        {"element[0] not found", "{'elements': []}"},
        {"element[0] not found", "{'elements': ['pie']}"},
        {"chart type not found", "{'elements': [{'values': [1]}]}"},
        {"chart type not found", "{'elements': [{'type': 7}]}"},
        {"chart type not known", "{'elements': [{'type': 'scatter'}]}"},
        {"element0 colour format error",
         "{'elements': [{" + bar + ", 'colours': ['112233'], 'values': [1]}]}"},
        {"element0 colour format error",
         "{'elements': [{" + bar + ", 'colours': ['#11223'], 'values': [1]}]}"},
        {"element0 colour format error",
         "{'elements': [{" + bar + ", 'colours': ['#1122334'], 'values': [1]}]}"},
        {"element0 colour format error",
         "{'elements': [{" + bar + ", 'colours': '#112233', 'values': [1]}]}"},
        {"element0 colour format error",
         "{'elements': [{" + bar + ", 'values': [{'top': 1, 'colour': '#11223g'}]}]}"},
        {"element0 value array not found", "{'elements': [{" + bar + "}]}"},
        {"element0 values array format error", "{'elements': [{" + bar + ", 'values': 3}]}"},
        {"element0 value format error", "{'elements': [{" + bar + ", 'values': ['3']}]}"},
        {"element0 value format error", "{'elements': [{" + bar + ", 'values': [[3]]}]}"},
        {"element0 value format error", "{'elements': [{" + stack + ", 'values': [3]}]}"},
        {"missing top value", "{'elements': [{" + bar + ", 'values': [{'label': 'x'}]}]}"},
        {"element0 value not number", "{'elements': [{" + bar + ", 'values': [{'top': '1'}]}]}"},
        {"element0 value not number", "{'elements': [{" + bar + ", 'values': [-nan]}]}"},
        {"element0 value not number", "{'elements': [{" + bar + ", 'values': [1e999]}]}"},
        {"element0 value is negative", "{'elements': [{" + bar + ", 'values': [1, -1]}]}"},
        {"more element0 values than colours",
         "{'elements': [{" + bar + ", 'colours': ['#112233'], 'values': [1, 2]}]}"},
        {"more element0 values than colours",
         "{'elements': [{" + stack + ", 'colours': ['#112233'], 'values': [[1, 2]]}]}"},
        {"missing elements colour string", "{'elements': [{'type': 'bar_2d', 'values': [1]}]}"},
        {"missing elements colour string",
         "{'elements': [{" + bar + ", 'values': [1]}, {'values': [1]}]}"},
        {"elements values array format error",
         "{'elements': [{" + bar + ", 'values': [1]}, {" + bar + "}]}"},
        {"zero ystep", Bars("'y_axis': {'steps': 0}")},
        {"value axis out of range", Bars("'y_axis': {'steps': -5}")},
        {"value axis out of range", Bars("'y_axis': {'max': 1e300}")},
        {"value axis out of range", Bars("'y_axis': {'max': -nan, 'steps': -inf}")},
        {"value axis out of range", Bars("", "[1e300]")},
        {"no values array in pie chart", "{'elements': [{'type': 'pie'}]}"},
        {"no value for pie segment",
         "{'elements': [{'type': 'pie', 'colour': '#112233', 'values': [{'label': 'x'}]}]}"},
        {"no value for pie segment",
         "{'elements': [{'type': 'pie', 'colour': '#112233', 'values': [5]}]}"},
        {"element0 value label is not a string",
         "{'elements': [{'type': 'pie', 'colour': '#112233', 'values': [{'value': 1, 'label': 2}]}]}"},
        {"more than 10000 values in one chart", Bars("", "[" + Repeat("1,", 10001) + "]")},
        {"more than 10000 values in one chart",
         "{'elements': [{" + stack + ", 'values': [" + Repeat("[],", 10001) + "]}]}"},
        {"more than 200 elements in one chart",
         "{'elements': [" + Repeat("{'type': 'pie'},", 201) + "]}"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text.substr(0, 200));
        const DrawnChart drawn(c.text);
        CHECK(drawn.problem == c.problem);
        CHECK_FALSE(drawn.HasFile());
    }
}

TEST_CASE("what is odd but can be drawn is drawn") {
    const std::string pie = "{'elements': [{'type': 'pie', 'colour': '#112233', 'values': ";
    const struct {
        const char* what;
        std::string text;
        int width, height;
    } cases[] = {
        {"no values", Bars("", "[]"), 600, 300},
        {"an empty value", Bars("", "[1, null, {'top': null}, 2]"), 600, 300},
        {"as many values as there may be", Bars("", "[" + Repeat("3,", 10000) + "]"), 600, 300},
        {"a picture of one pixel's width", Bars(Labels("diagonal", "Sales")), 1, 1},
        {"an axis of a billion steps", Bars("'y_axis': {'max': 2000000000, 'steps': 1}"), 600, 300},
        {"an axis of tiny steps", Bars("'y_axis': {'max': 1, 'steps': 1e-300}"), 600, 300},
        {"a top below the step", Bars("'y_axis': {'max': 1, 'steps': 50}"), 600, 300},
        {"a bar beyond the top", Bars("'y_axis': {'max': 1, 'steps': 1}", "[5e8]"), 600, 300},
        {"members of other kinds",
         Bars(
             "'title': 'x', 'x_axis': [], 'y_axis': 1, 'x_legend': null, 'y_label__label_style': {}"),
         600, 300},
        {"a huge font", Bars("'title': {'text': 'x', 'style': 'font-size: 999999999px'}"), 600,
         300},
        {"bytes that are no UTF-8", Bars(Labels("vertical", "\xC3(\xFF\xE2\x82")), 600, 300},
        {"a pie of nothing", pie + "[{'value': 0}, {'value': null}]}]}", 600, 300},
        {"a pie whose sum is too large", pie + "[{'value': 1e308}, {'value': 1e308}]}]}", 600, 300},
        {"a pie without room", pie + "[{'value': 1, 'label': 'Sales'}]}]}", 3, 2},
        {"the largest picture", pie + "[{'value': 1}, {'value': 2}]}]}", 4000, 4000},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const DrawnChart drawn(c.text, c.width, c.height);
        CHECK(drawn.problem == "");
        CHECK(drawn.HasFile());
    }
    const DrawnChart tooWide(Bars(""), 4001);
    CHECK(tooWide.problem.find("4001") != std::string::npos);
    CHECK_FALSE(tooWide.HasFile());
}

TEST_CASE("the bands of a bar chart") {
    const DrawnChart bare(Bars(""));
    REQUIRE(bare.problem == "");
    CHECK(bare.chart->height_keys == 8);
    CHECK(bare.chart->height == 208);  // key band and plot
    CHECK(bare.chart->y_origin == 0);

    // "i" and "o" make a label of just 100 pixels, whose diagonal band is (100 + 8) * 0.7071.
    pngwriter measure;
    std::string label;
    for (int o = 0; o < 16 && label.empty(); ++o)
        for (int i = 0; i < 40; ++i) {
            const std::string tried = Repeat("o", o) + Repeat("i", i);
            if (measure.get_text_width(kVeraPath, 8, tried.c_str()) == 100) label = tried;
        }
    REQUIRE(!label.empty());
    const DrawnChart diagonal(Bars(Labels("diagonal", label)));
    CHECK(diagonal.chart->height_x_labels == 76);
    const DrawnChart vertical(Bars(Labels("vertical", label)));
    CHECK(vertical.chart->height_x_labels == measure.get_text_width(kLuxiPath, 8, label.c_str()));

    const DrawnChart full(
        Bars("'title': {'text': 'Calls', 'style': '{font-size: 20px}'}, "
             "'x_legend': {'text': 'Day', 'style': '{font-size: 12px}'}, "
             "'x_axis': {'tick-height': 4, 'labels': {'labels': [{'text': 'Mon', 'size': 12}]}}, "
             "'y_axis': {'max': 25, 'steps': 10}"));
    CHECK(full.chart->height_title == 26);     // 20 * 0.7 + 12
    CHECK(full.chart->height_x_legend == 20);  // 12 * 0.7, rounded down, + 2 * 6
    CHECK(full.chart->height_x_labels == 10);  // 12 - 2
    CHECK(full.chart->height_x_ticks == 4);
    CHECK(full.chart->height == 8 + 26 + 200 + 4 + 10 + 20);
    CHECK(full.chart->y_origin == 34);
    CHECK(full.chart->ymax == 30);  // the next multiple of the step
}

TEST_CASE("the key takes no row, one or two") {
    const auto keyed = [](const std::string& text) {
        return "{'elements': [{'type': 'bar_2d', 'colour': '#112233', 'values': [1], 'keys': [" +
               text + "]}]}";
    };
    const std::string key = "{'text': 'Answered', 'colour': '#445566'},";
    const struct {
        std::string keys;
        int rows, band;
    } cases[] = {{"", 0, 8},
                 {"{'text': 'x', 'colour': 'red'}, {'colour': '#445566'}", 0, 8},
                 {key, 1, 28},
                 {Repeat(key, 5), 1, 28},
                 {Repeat(key, 9), 2, 48},
                 {Repeat(key, 300), 2, 48}};
    for (const auto& c : cases) {
        CAPTURE(c.keys.substr(0, 200));
        const DrawnChart drawn(keyed(c.keys));
        REQUIRE(drawn.problem == "");
        CHECK(drawn.chart->key_rows == c.rows);
        CHECK(drawn.chart->height_keys == c.band);
    }
    // A text of the first element makes an entry of every element.
    const DrawnChart elements(
        "{'elements': [{'type': 'bar_2d', 'colour': '#112233', 'text': 'In', 'values': [1]},"
        "{'type': 'bar_2d', 'colour': '#445566', 'text': 'Out', 'values': [2]}]}");
    CHECK(elements.chart->key_list->size() == 2);
}

TEST_CASE("a title wider than nine tenths of the chart shrinks point by point, or goes") {
    const auto titled = [](const std::string& text, int width) {
        return DrawnChart(Bars("'title': {'text': '" + text + "', 'style': '{font-size: 20px}'}"),
                          width);
    };
    const std::string text = Repeat("Calls by user ", 5);
    const DrawnChart narrow = titled(text, 400);
    REQUIRE(narrow.chart->title_text != nullptr);
    const int size = narrow.chart->title_text->fontsize;
    CHECK(size < 14);
    CHECK(narrow.chart->title_text->Width() * 10 < 400 * 9);
    CHECK(narrow.chart->png.get_text_width(kVeraPath, size + 1, text.c_str()) * 10 >= 400 * 9);
    CHECK(narrow.chart->height_title == size + 12);

    const DrawnChart gone = titled(text, 20);
    CHECK(gone.chart->title_text == nullptr);
    CHECK(gone.chart->height_title == 0);
}

TEST_CASE("the image map counts from the upper left corner and escapes its links") {
    TestRequest request;
    const auto map = [&](const std::string& text, const char* server) {
        std::string copy = text;
        JsonObj json(copy.data(), nullptr, 0);
        const std::string file = (request.root / "12_ab.png.tmp").string();
        const PngChart chart(&json, 600, 300, file.c_str(), server);
        UString name, areas;
        chart.GetMap(name, areas);
        CHECK(name == "map_12_ab");
        const std::string whole = areas.c_str();
        const std::string head = "<map name=\"map_12_ab\">\r\n", foot = "</map>\r\n";
        REQUIRE(whole.starts_with(head));
        REQUIRE(whole.ends_with(foot));
        return whole.substr(head.size(), whole.size() - head.size() - foot.size());
    };
    const auto bar = [](const std::string& click) {
        return "{\"y_axis\": {\"max\": 20, \"steps\": 10}, \"elements\": [{\"type\": \"bar_2d\", "
               "\"colour\": \"#112233\", \"values\": [{\"top\": 10, \"on-click\": \"" +
               click + "\"}]}]}";
    };
    // The plot begins right of the label "20" and ends 12 pixels before the edge; the bar of 60
    // stands in its middle, 100 high of 200, with 8 pixels of key above.
    pngwriter measure;
    const int origin = measure.get_text_width(kVeraPath, 11, "20") + 6;
    const double middle = origin + 1 + (600 - origin - 12) / 2.0;
    const int left = static_cast<int>(middle - 30), right = static_cast<int>(middle + 30) - 2;
    const std::string rectangle = "<area shape=\"rect\" coords=\"" + std::to_string(left - 1) +
                                  ",108," + std::to_string(right) + ",208\" href=\"";
    const struct {
        const char* click;
        const char* server;
        std::string area;
    } cases[] = {
        {"navigateTo('a.cgi?b=1&c=2')", "", rectangle + "a.cgi?b=1&amp;c=2\" >\n"},
        {"navigateTo('/a')", "https://x.example.com", rectangle + "https://x.example.com/a\" >\n"},
        {"navigateTo('a'b')", "", rectangle + "a&#39;b\" >\n"},
        {"navigateTo('a\\\"><script>')", "", rectangle + "a&quot;&gt;&lt;script&gt;\" >\n"},
        {"navigateTo('https://x.example.com/?a:b')", "",
         rectangle + "https://x.example.com/?a:b\" >\n"},
        {"navigateTo('javascript:alert(1)')", "", ""},
        {"navigateTo('data:text/html,x')", "", ""},
        {"navigateTo('a'", "", ""},
        {"navigateTo('a' )", "", ""},
        {"navigateTo('", "", ""},
        {"goTo('a')", "", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.click);
        CHECK(map(bar(c.click), c.server) == c.area);
    }

    // Half a pie from three o'clock on is the lower half; a pie of one slice is a disc.
    const std::string slice =
        "{\"value\": 5, \"label\": \"Sales & \\\"A\\\"\", "
        "\"on-click\": \"navigateTo('a')\"}";
    const std::string pie =
        "{\"elements\": [{\"type\": \"pie\", \"colour\": \"#112233\", \"values\": [";
    const std::string whole = map(pie + slice + "]}]}", "");
    CHECK(whole.starts_with("<area shape=\"circle\" coords=\"300,150,"));
    CHECK(whole.ends_with("\" href=\"a\" alt=\"Sales &amp; &quot;A&quot;\">\r\n"));
    const std::string half = map(pie + slice + ", {\"value\": 5}]}]}", "");
    CHECK(half.starts_with("<area shape=\"poly\" coords=\"300,150,"));
    CHECK(half.ends_with(",150\" href=\"a\" alt=\"Sales &amp; &quot;A&quot;\" />\r\n"));
}
