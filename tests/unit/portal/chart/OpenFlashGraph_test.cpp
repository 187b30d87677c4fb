#include "portal/chart/OpenFlashGraph.h"

#include <doctest/doctest.h>
#include <sys/stat.h>
#include <utime.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cgiFramework/JsonObj.h"
#include "unit/portal/report/ColumnFile.h"

namespace {

struct Point {
    const char* value;
    const char* label;
    const char* link;
};

void AddSeries(OpenFlashGraph& graph, const char* name, const char* colour, const char* type,
               const std::vector<Point>& points) {
    auto& series =
        graph.AddDataSeries(std::make_unique<OpenFlashGraphDataSeries>(name, colour, type));
    for (const Point& point : points) {
        series.AddValue(point.value, point.label, /*isNumber=*/true);
        series.SetLink(series.GetCount() - 1, point.link);
    }
}

// The part of the description between two members' names, both left in.
std::string Part(const std::string& text, const char* from, const char* to) {
    const size_t start = text.find(from);
    return text.substr(start, text.find(to, start) - start);
}

std::string Describe(const OpenFlashGraph& graph, const char* query = "") {
    WebContext ctx("/Norvane/none", nullptr);
    ctx.ScanWebArguments(query);
    return graph.Describe(ctx);
}

}  // namespace

TEST_CASE("the description of a bar chart, whole") {
    OpenFlashGraph graph(900, 320, "Calls \"A/B\"", "Day", "Calls", "chart1");
    AddSeries(graph, "Answered", "#12616d", "bar_glass",
              {{"12", "Mon", ""}, {"7.50", "Tue", "/x?a=1&b='"}, {"", "W\r\ned", ""}});
    AddSeries(graph, "Missed", "#e8a33d", "bar_glass", {{"3", "", ""}, {"0", "", ""}});
    const std::string expected =
        R"_({"title" : {"text" : "Calls \"A\/B\"","style" : "{font-size: 20px; color:#000000; )_"
        R"_(font-family: Verdana; text-align: center;}")_"
        "\n},"
        R"_("y_legend" : {"text" : "Calls","style" : "{color: #000000; font-size: 12px;}")_"
        "\n},"
        R"_("x_legend" : {"text" : "Day","style" : "{color: #000000; font-size: 12px;}")_"
        "\n},"
        R"_("x_axis" : {"labels" : {"rotate" : "horizontal","labels" : [)_"
        R"_({"text" : "Mon","size" : 10)_"
        "\n},"
        R"_({"text" : "Tue","size" : 10)_"
        "\n},"
        R"_({"text" : "W  ed","size" : 10)_"
        "\n}\n]\n},"
        R"_("tick-height" : 4,"colour" : "#000000","grid_colour" : "#00ff00")_"
        "\n},"
        R"_("elements" : [{"type" : "bar_glass","alpha" : "0.9","colour" : "#12616d",)_"
        R"_("text" : "Answered","font-size" : 10,"tip" : "Answered: #val#","values" : [12,)_"
        R"_({"top" : 7.50,"on-click" : "navigateTo('\/x?a=1&b=%27')")_"
        "\n},null\n]\n},"
        R"_({"type" : "bar_glass","alpha" : "0.9","colour" : "#e8a33d","text" : "Missed",)_"
        R"_("font-size" : 10,"tip" : "Missed: #val#","values" : [3,0)_"
        "\n]\n}\n],"
        R"_("y_axis" : {"steps" : 5,"tick-length" : 4,"max" : 15)_"
        "\n},"
        R"_("y_label__label_style" : "10,#000000")_"
        "\n}";
    CHECK(Describe(graph) == expected);
}

TEST_CASE("each type has members of its own") {
    OpenFlashGraph line(900, 320, "", "", "", "c");
    AddSeries(line, "All", "#12616d", "line", {{"1", "a", ""}, {"2", "b", "/l"}});
    CHECK(Part(Describe(line), "\"font-size\" : 10", "\"y_axis\"") ==
          "\"font-size\" : 10,\"dot-style\" : {\"type\" : \"solid-dot\",\"dot-size\" : 3,"
          "\"halo-size\" : 1\n},\"tip\" : \"All: #val#\",\"values\" : [1,{\"value\" : 2,"
          "\"on-click\" : \"navigateTo('\\/l')\"\n}\n]\n}\n],");

    OpenFlashGraph pie(900, 320, "", "", "", "c");
    AddSeries(pie, "All", "#12616d", "pie", {{"3", "a", "/p"}, {"4", "b", ""}});
    CHECK(Part(Describe(pie), "\"font-size\" : 10", "\"y_axis\"") ==
          "\"font-size\" : 10,\"start-angle\" : 35,\"animate\" : [{\"type\" : \"fade\"\n}\n],"
          "\"tip\" : \"#label#<br>#val# of #total#\",\"colours\" : [\"#faafa5\",\"#67d0dd\"\n],"
          "\"values\" : [{\"label\" : \"a\",\"value\" : 3,\"on-click\" : \"navigateTo('\\/p')\"\n},"
          "{\"label\" : \"b\",\"value\" : 4\n}\n]\n}\n],");

    OpenFlashGraph stack(900, 320, "", "", "", "c");
    AddSeries(stack, "In", "#12616d", "bar_stack", {{"60", "a", "/s"}, {"2", "b", ""}});
    AddSeries(stack, "Out", "#e8a33d", "bar_stack", {{"50", "a", ""}});
    const std::string text = Describe(stack);
    CHECK(Part(text, "\"elements\"", "\"y_axis\"") ==
          "\"elements\" : [{\"type\" : \"bar_stack\",\"alpha\" : \"0.9\",\"colour\" : \"#12616d\","
          "\"text\" : \"In\",\"font-size\" : 10,\"tip\" : \"#key#: #val# of #total#\",\"keys\" : ["
          "{\"colour\" : \"#12616d\",\"text\" : \"In\",\"font-size\" : 10\n},"
          "{\"colour\" : \"#e8a33d\",\"text\" : \"Out\",\"font-size\" : 10\n}\n],\"values\" : ["
          "[{\"top\" : 60,\"on-click\" : \"navigateTo('\\/s')\"\n},50\n],[2,0\n]\n]\n}\n],");
    CHECK(Part(text, "\"steps\"", "\n}") == "\"steps\" : 50,\"tick-length\" : 4,\"max\" : 150");
}

TEST_CASE("the colours of a pie depend on the number of its slices") {
    const struct {
        int slices;
        const char* colours;
    } cases[] = {
        {1, "\"#faafa5\""},
        {3, "\"#faafa5\",\"#f6e785\",\"#67d0dd\""},
        {4, "\"#faafa5\",\"#f6e785\",\"#a885ee\",\"#67d0dd\""},
        {5, "\"#faafa5\",\"#f6e785\",\"#dc95dd\",\"#a885ee\",\"#67d0dd\""},
        {6, "\"#faafa5\",\"#f6e785\",\"#dc95dd\",\"#ff756d\",\"#a885ee\",\"#67d0dd\""},
        {7, "\"#faafa5\",\"#f6e785\",\"#dc95dd\",\"#9fe481\",\"#ff756d\",\"#a885ee\",\"#67d0dd\""},
        {9,
         "\"#9fe481\",\"#dc95dd\",\"#f6e785\",\"#faafa5\",\"#67d0dd\",\"#a885ee\",\"#ff756d\","
         "\"#cb7b42\",\"#9fe481\""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.slices);
        OpenFlashGraph pie(900, 320, "", "", "", "c");
        AddSeries(pie, "", "#12616d", "pie", std::vector<Point>(c.slices, {"1", "x", ""}));
        CHECK(Part(Describe(pie), "\"colours\"", "\n") ==
              std::string("\"colours\" : [") + c.colours);
    }
}

TEST_CASE("texts grow with a wallboard's chart and shrink for a long title") {
    const std::string fifty(50, 'x');
    const struct {
        int height;
        const char* query;
        std::string title;
        const char* titleSize;
        const char* legendSize;
    } cases[] = {
        {600, "wallboard=true", "t", "font-size: 40px", "font-size: 24px"},
        {600, "wallboard=1", "t", "font-size: 20px", "font-size: 12px"},
        {300, "wallboard=true", "t", "font-size: 20px", "font-size: 12px"},
        {320, "", fifty, "font-size: 20px", "font-size: 12px"},
        {320, "", fifty + "x", "font-size: 14px", "font-size: 12px"},
        {700, "wallboard=true", fifty + "x", "font-size: 32px", "font-size: 28px"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.query);
        CAPTURE(c.title);
        const OpenFlashGraph graph(900, c.height, c.title.c_str(), "", "", "c");
        const std::string text = Describe(graph, c.query);
        CHECK(Part(text, "font-size", ";") == c.titleSize);
        CHECK(Part(text.substr(text.find("y_legend")), "font-size", ";") == c.legendSize);
    }
}

TEST_CASE("the value axis ends above the largest value, in round steps, and writes times") {
    const struct {
        const char* legend;
        const char* largest;
        int scale;
        const char* axis;
    } cases[] = {
        {"", "0", 0, "\"steps\" : 1,\"tick-length\" : 4,\"max\" : 1\n}"},
        {"", "0.3", 0, "\"steps\" : 1,\"tick-length\" : 4,\"max\" : 1\n}"},
        {"", "101", 0, "\"steps\" : 50,\"tick-length\" : 4,\"max\" : 150\n}"},
        {"", "7", 40, "\"steps\" : 10,\"tick-length\" : 4,\"max\" : 40\n}"},
        {"", "1e300", 0, "\"steps\" : 500000000,\"tick-length\" : 4,\"max\" : 2000000000\n}"},
        {"", "nan", 0, "\"steps\" : 1,\"tick-length\" : 4,\"max\" : 1\n}"},
        {"Minutes on Calls", "3700", 0,
         "\"steps\" : 900,\"tick-length\" : 4,\"max\" : 4500,\"labels\" : ["
         "{\"y\" : 0,\"text\" : \"00:00:00\"\n},{\"y\" : 900,\"text\" : \"00:15:00\"\n},"
         "{\"y\" : 1800,\"text\" : \"00:30:00\"\n},{\"y\" : 2700,\"text\" : \"00:45:00\"\n},"
         "{\"y\" : 3600,\"text\" : \"01:00:00\"\n},{\"y\" : 4500,\"text\" : \"01:15:00\"\n}\n]\n}"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.largest);
        OpenFlashGraph graph(900, 320, "", "", c.legend, "c");
        graph.SetScale(c.scale);
        AddSeries(graph, "", "#12616d", "bar_glass", {{c.largest, "a", ""}});
        const std::string text = Describe(graph);
        CHECK(Part(text, "\"steps\"", ",\"y_label__") == c.axis);
    }
}

TEST_CASE("any text of a value leaves a description that can be read") {
    OpenFlashGraph graph(900, 320, "", "", "", "c");
    AddSeries(graph, "", "#12616d", "bar_glass",
              {{"007", "a", ""},
               {".5", "", ""},
               {"1,2", "", ""},
               {"-3", "", ""},
               {"5.", "", ""},
               {"1e3", "", ""},
               {"0x10", "", ""},
               {"inf", "", ""},
               {"-", "", ""}});
    graph.AddDataSeries(std::make_unique<OpenFlashGraphDataSeries>("", "", "bar_glass"))
        .AddValue("1\"2", /*isNumber=*/false);
    std::string text = Describe(graph);
    CHECK(text.find("[7,0.5,null,-3,5,1000,16,null,null\n]") != text.npos);
    CHECK(text.find("[\"1\\\"2\"\n]") != text.npos);
    CHECK_NOTHROW(JsonObj(text.data(), nullptr, 0));
}

TEST_CASE("the file is the session's own and private, and old ones go") {
    std::filesystem::create_directories(TestRoot() + "/Norvane/sessions");
    WebContext ctx("/Norvane/none", nullptr);
    ctx.session_id = "42";
    OpenFlashGraph graph(900, 320, "T", "", "", "chart7");
    AddSeries(graph, "", "#12616d", "bar_glass", {{"1", "a", ""}});
    UStringWebRender out;
    graph.Render(ctx, &out);
    CHECK(out.output == "<div id=\"chart7\" style=\"visibility:visible\"></div>");
    const std::string first = graph.GetPathname().c_str();
    const std::string file = TestRoot() + first;
    CHECK(first.starts_with("/Norvane/sessions/charts/42_"));
    std::stringstream content;
    content << std::ifstream(file).rdbuf();
    CHECK(content.str() == graph.Describe(ctx));
    struct stat info {};
    REQUIRE(stat(file.c_str(), &info) == 0);
    CHECK((info.st_mode & 0777) == 0600);

    const utimbuf old = {info.st_atime, info.st_mtime - 3 * 60 * 60};
    REQUIRE(utime(file.c_str(), &old) == 0);
    graph.writeData(ctx);
    CHECK(graph.GetPathname() != first.c_str());
    CHECK_FALSE(std::filesystem::exists(file));
}
