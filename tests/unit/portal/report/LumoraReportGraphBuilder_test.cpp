#include "portal/report/LumoraReportGraphBuilder.h"

#include <doctest/doctest.h>

#include <cstring>
#include <fstream>
#include <sstream>

#include "cgiFramework/JsonObj.h"
#include "portal/context/PortalContext.h"
#include "unit/portal/report/ColumnFile.h"

namespace {

using Row = std::vector<std::string_view>;

struct Definition {
    std::string columnFile;
    Row names;
    const char* format = "";
    const char* key = "";
};

const Definition kDays = {
    "day date Day\n"
    "calls number Calls \"\" \"\" In sum\n"
    "answered number Answered \"\" \"\" In sum\n"
    "missed number Missed \"\" \"\" In sum\n"
    "rate percent \"Answered %\" \"\" \"\" In percent answered calls\n"
    "outbound number Out \"\" \"\" \"\" sum\n"
    "talk time Talk \"\" \"\" \"\" sum\n",
    {"day", "calls", "answered", "missed", "rate", "outbound", "talk"}};
const Definition kNames = {
    "name text Name\n"
    "calls number Calls detail \"\" \"\" sum\n"
    "wait time Wait \"\" \"\" \"\" avg wait calls\n",
    {"name", "calls", "wait"}};

Definition With(Definition definition, const char* format, const char* key = "") {
    definition.format = format;
    definition.key = key;
    return definition;
}

// Rows of text that live as long as the builder reads them.
class Rows {
  public:
    // `make` answers the row of that number.
    template <class Make>
    Rows(size_t count, Make make) {
        for (size_t i = 0; i < count; ++i)
            rows_.push_back(make(static_cast<int>(i)));
    }
    void HandTo(LumoraReportGraphBuilder& builder) const {
        for (const auto& row : rows_)
            builder.AddRow(Row(row.begin(), row.end()));
    }

  private:
    std::vector<std::vector<std::string>> rows_;
};

Rows Days(size_t count) {
    return Rows(count, [](int i) -> std::vector<std::string> {
        char day[32];
        snprintf(day, sizeof day, "2026-%02d-%02d", i / 28 + 1, i % 28 + 1);
        const std::string answered = std::to_string(i + 1);
        return {day, std::to_string(i + 3), answered, "2", "50", "4", "61"};
    });
}

// The name of row i is "n<i>", its calls i.
Rows Names(size_t count) {
    return Rows(count, [](int i) -> std::vector<std::string> {
        return {"n" + std::to_string(i), std::to_string(i), "5"};
    });
}

// What a reader of the graph sees: "type: series series | first label..last label | axis", "heat"
// or "none". `written` becomes the graph's HTML and its description.
std::string Graph(const Definition& definition, const Rows& rows, std::string* written = nullptr) {
    WriteColumnFile("graph.col", definition.columnFile);
    const LumoraReportSQLCol columns("/Norvane/config/reports/", "graph.col");
    std::filesystem::create_directories(TestRoot() + "/Norvane/sessions");
    PortalContext ctx("/Norvane/none", nullptr);
    ctx.session_id = "42";
    LumoraReportGraphBuilder builder(columns, definition.names, definition.format, definition.key);
    builder.SetLinks([](const LumoraSQLColumnDescription& column, const Row& row) {
        return "/?at=" + std::string(column.linkpage) + "&of=" + std::string(row[0]);
    });
    rows.HandTo(builder);
    const auto graph = builder.Build(ctx, "Title");
    if (graph == nullptr) return "none";
    UStringWebRender out;
    graph->Render(ctx, &out);
    const std::string page = out.output.c_str();
    if (written != nullptr) *written = page;
    if (page.find("heatTable") != page.npos) return "heat";

    const size_t id = page.find("&amp;id=") + strlen("&amp;id=");
    std::stringstream text;
    text << std::ifstream(TestRoot() + "/Norvane/sessions/charts/" +
                          page.substr(id, page.find('"', id) - id))
                .rdbuf();
    std::string description = text.str();
    if (written != nullptr) *written += description;
    const JsonObj chart(description.data(), nullptr, 0);
    const auto& elements = chart.Find("elements")->values;
    const JsonObj* first = elements.First();
    std::string shown = std::string(first->String("type")) + ":";
    if (const JsonObj* keys = first->Find("keys")) {
        for (const JsonObj& key : keys->values)
            shown += std::string(" ") + key.String("text");
    } else {
        for (const JsonObj& element : elements)
            shown += std::string(" ") + element.String("text");
    }
    const auto& labels = chart.Find("x_axis")->Find("labels")->Find("labels")->values;
    std::string last;
    for (const JsonObj& label : labels)
        last = label.String("text");
    return shown + " | " + labels.First()->String("text") + ".." + last + " | " +
           chart.Find("y_legend")->String("text");
}

}  // namespace

TEST_CASE("kind, series and labels follow from the columns, the rows and the format") {
    const Definition keyed = {
        "hour number Hour\nteam text Team\ncalls number Calls \"\" \"\" \"\" sum\n",
        {"team", "hour", "calls"}};
    const Rows hours(4, [](int i) -> std::vector<std::string> {
        const char* at[] = {"9", "10", "8", "9"};
        return {i < 2 ? "Sales" : "Support", at[i], std::to_string(i + 1)};
    });
    const struct {
        const char* what;
        Definition definition;
        Rows rows;
        const char* graph;
    } cases[] = {
        {"days, without the whole of the parts", kDays, Days(31),
         "bar_stack: Answered Missed | 2026-01-01..2026-02-03 | In"},
        {"many days", kDays, Days(32), "line: Answered Missed | 2026-01-01..2026-02-04 | In"},
        {"as many days as can be drawn", kDays, Days(336),
         "line: Answered Missed | 2026-01-01..2026-12-28 | In"},
        {"more than can be drawn", kDays, Days(367), "none"},
        {"far more than can be drawn", kDays, Days(5000), "none"},
        {"times", With(kDays, "money series:talk"), Days(3),
         "bar_glass: Talk | 2026-01-01..2026-01-03 | Minutes on Calls"},
        {"columns of one unit", With(kDays, "series:calls,talk,outbound,nosuch graph:line"),
         Days(3), "line: Calls Out | 2026-01-01..2026-01-03 | "},
        {"no sums", With(kDays, "series:rate"), Days(3),
         "line: Answered % | 2026-01-01..2026-01-03 | In: Answered %"},
        {"no graph wanted", With(kDays, "graph:none"), Days(3), "none"},
        {"one row", kDays, Days(1), "none"},
        {"a column that is not there", With(kDays, "label:nosuch graph:bar series:missed"), Days(2),
         "bar_filled: Missed | 2026-01-01..2026-01-02 | In: Missed"},
        {"labels that are numbers", With(kDays, "label:calls"), Days(3), "none"},
        {"a list", kNames,
         Rows(9,
              [](int i) -> std::vector<std::string> {
                  return {i % 2 ? "a" : "b", "1", "2"};
              }),
         "none"},
        {"few names", kNames, Names(8), "pie: Calls | n0..n7 | Calls"},
        {"names", kNames, Names(9), "bar_glass: Calls | n0..n8 | Calls"},
        {"many names: the largest first", kNames, Names(31), "bar_glass: Calls | n30..n11 | Calls"},
        {"a great many names", kNames, Names(25000), "bar_glass: Calls | n24999..n24980 | Calls"},
        {"a pie of many, of which the largest count", With(kNames, "graph:pie"),
         Rows(2500,
              [](int i) -> std::vector<std::string> {
                  return {"n" + std::to_string(i), std::to_string(i < 7 ? 9000 + i : 1), ""};
              }),
         "pie: Calls | n6..Others | Calls"},
        {"a pie of even slices, too many", With(kNames, "graph:pie"), Names(2500),
         "bar_glass: Calls | n2499..n2480 | Calls"},
        {"a key of its own for each name", With(kNames, "series:calls label:name", "wait"),
         Rows(20000,
              [](int i) -> std::vector<std::string> {
                  return {"n" + std::to_string(i), "1", std::to_string(i)};
              }),
         "none"},
        {"rows of one name add up", With(kNames, "label:name"),
         Rows(9,
              [](int i) -> std::vector<std::string> {
                  return {i % 2 ? "a" : "b", "1", "2"};
              }),
         "pie: Calls | b..a | Calls"},
        {"times of day", With(kNames, "label:name"),
         Rows(48,
              [](int i) -> std::vector<std::string> {
                  return {(i < 20 ? "0" : "") + std::to_string(i / 2) + ":30" + std::to_string(i),
                          "1", "2"};
              }),
         "line: Calls | 00:300..23:3047 | Calls"},
        {"averages of names", With(kNames, "series:wait"), Names(3),
         "bar_glass: Wait | n0..n2 | Minutes on Calls"},
        {"nothing but zero", kNames,
         Rows(5,
              [](int) -> std::vector<std::string> {
                  return {"n", "0", ""};
              }),
         "none"},
        {"below zero", kNames,
         Rows(3,
              [](int i) -> std::vector<std::string> {
                  return {std::to_string(i), std::to_string(i - 1), ""};
              }),
         "bar_filled: Calls | 0..2 | Calls"},
        {"a series a key", With(keyed, "", "team"), hours,
         "bar_stack: Sales Support | 8..10 | Calls"},
        {"more labels than can be added up", With(kNames, "label:name"), Names(20001), "none"},
        {"heat", With(keyed, "graph:heat"), hours, "heat"},
        {"no figures",
         {"a text A\nb text B\n", {"a", "b"}},
         Rows(3,
              [](int) -> std::vector<std::string> {
                  return {"x", "1"};
              }),
         "none"},
    };
    for (const auto& c : cases) {
        CAPTURE(std::string(c.what));
        CHECK(Graph(c.definition, c.rows) == std::string(c.graph));
    }
}

TEST_CASE("what is left out is said, and points keep their links") {
    std::string html;
    Graph(kNames, Names(1500), &html);
    CHECK(html.find("<figcaption class=\"hint\">The 20 largest of 1500.</figcaption>") !=
          html.npos);
}

TEST_CASE(
    "a heat table shows every value, its shade and its link, columns in the order of numbers") {
    const Definition definition = {
        "weekday text Day\nhour number Hour\nwait time Wait \"\" \"\" \"\" sum\n",
        {"weekday", "hour", "wait"},
        "graph:heat"};
    const Rows rows(3, [](int i) -> std::vector<std::string> {
        const char* hour[] = {"10", "9", "10"};
        return {i < 2 ? "Mon <1>" : "Tue", hour[i], std::to_string(60 * (i + 1))};
    });
    std::string html;
    CHECK(Graph(definition, rows, &html) == "heat");
    CHECK(html.find("<th scope=\"col\">9</th><th scope=\"col\">10</th></tr>") != html.npos);
    CHECK(html.find("<th scope=\"row\">Mon &lt;1&gt;</th><td style=\"--heat:66\">0:02:00</td>"
                    "<td style=\"--heat:33\">0:01:00</td></tr>\n<tr><th scope=\"row\">Tue</th>"
                    "<td style=\"--heat:0\">0:00:00</td><td style=\"--heat:100\">0:03:00</td>") !=
          html.npos);
}
