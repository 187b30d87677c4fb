#include "portal/report/ReportTableWriter.h"

#include <doctest/doctest.h>

#include <memory>

#include "cgiFramework/WebRender.h"
#include "unit/portal/report/ColumnFile.h"

namespace {

using Row = std::vector<std::string_view>;

std::unique_ptr<LumoraReportSQLCol> Columns(const char* content) {
    WriteColumnFile("table.col", content);
    return std::make_unique<LumoraReportSQLCol>("/Norvane/config/reports/", "table.col");
}

// The finished table.
std::string Table(const char* columnFile, const Row& names, const std::vector<Row>& rows) {
    const auto columns = Columns(columnFile);
    UStringWebRender out;
    ReportTableWriter table(*columns, names, out);
    for (const Row& row : rows)
        table.AddRow(row);
    table.Finish();
    return out.output.c_str();
}

// The text between the tags of the total row.
std::string TotalRow(const char* columnFile, const Row& names, const std::vector<Row>& rows) {
    const std::string html = Table(columnFile, names, rows);
    const std::string open = "<tr class=\"totalrow\">";
    const size_t start = html.find(open) + open.size();
    std::string text;
    bool inTag = false;
    for (const char c : html.substr(start, html.find("</tr>", start) - start)) {
        if (c == '<') inTag = true;
        if (!inTag) text += c;
        if (c != '>') continue;
        inTag = false;
        if (!text.empty() && text.back() != ' ') text += ' ';
    }
    return text;
}

std::string Refusal(const char* columnFile, const Row& names) {
    try {
        Table(columnFile, names, {});
        return "";
    } catch (const char* message) {
        return message;
    }
}

}  // namespace

TEST_CASE("a table has headings, alternating rows, totals and a row count") {
    const std::string html = Table(
        "name text User\n"
        "calls number Calls \"\" \"\" \"In & out\" sum\n"
        "talk time \"Talk <time>\" \"\" \"\" \"In & out\" sum\n",
        {"hidden", "CALLS", "Name", "Talk"},
        {{"x", "2", "Ann", "60"}, {"x", "3", "Ben <script>", "3600"}, {"x", "", "", ""}});
    CHECK(html ==
          "<div class=\"tableScroll\" tabindex=\"0\" role=\"region\" aria-label=\"Result\">"
          "<table class=\"reportTable\">\n<thead>\n"
          "<tr class=\"grouprow\"><td colspan=\"1\"></td>"
          "<th scope=\"colgroup\" colspan=\"2\">In &amp; out</th></tr>\n"
          "<tr><th scope=\"col\" class=\"text\">User</th>"
          "<th scope=\"col\" class=\"number\">Calls</th>"
          "<th scope=\"col\" class=\"time\">Talk &lt;time&gt;</th></tr>\n</thead>\n<tbody>\n"
          "<tr class=\"oddrow\"><td class=\"text\">Ann</td><td>2</td>"
          "<td>0:01:00</td></tr>\n"
          "<tr class=\"evenrow\"><td class=\"text\">Ben &lt;script&gt;</td>"
          "<td>3</td><td>1:00:00</td></tr>\n"
          "<tr class=\"oddrow\"><td class=\"text\"></td><td>-</td>"
          "<td>-</td></tr>\n"
          "</tbody>\n<tfoot><tr class=\"totalrow\"><th scope=\"row\">Total</th>"
          "<td>5</td><td>1:01:00</td></tr></tfoot>\n"
          "</table></div>\n<div class=\"rowCount\">3 rows</div>\n");
}

TEST_CASE("a table without rows writes nothing, one without totals has no foot") {
    CHECK(Table("name text Name \"\" \"\" \"\" count\n", {"name"}, {}) == "");
    const std::string html = Table("name text Name\n", {"name"}, {{"Ann"}});
    CHECK(html.find("tfoot") == std::string::npos);
    CHECK(html.find("grouprow") == std::string::npos);
    CHECK(html.find("<div class=\"rowCount\">1 row</div>") != std::string::npos);
}

TEST_CASE("a table that breaks off is closed without totals") {
    const auto columns = Columns("calls number Calls \"\" \"\" \"\" sum\n");
    UStringWebRender out;
    ReportTableWriter table(*columns, {"calls"}, out);
    table.BreakOff();
    CHECK(out.output.IsEmpty());
    table.AddRow({"1"});
    table.BreakOff();
    const std::string html = out.output.c_str();
    CHECK(html.ends_with("<td>1</td></tr>\n</tbody>\n</table></div>\n"));
}

TEST_CASE("a page shows its rows, and the totals of all rows") {
    const auto columns = Columns("n number N \"\" \"\" \"\" sum\n");
    const struct {
        uint64_t page;
        uint64_t rows;
        int shown;
        const char* count;
    } cases[] = {
        {1, ReportView::kAllRows, 3000, ">3,000 rows<"},
        {1, 500, 500, ">Rows 1-500 of 3,000<"},
        {6, 500, 500, ">Rows 2,501-3,000 of 3,000<"},
        {31, 100, 0, ">There is no page 31: the report has 3,000 rows<"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.page);
        CAPTURE(c.rows);
        ReportTableLayout layout;
        layout.view.page = c.page;
        layout.view.rows = c.rows;
        UStringWebRender out;
        ReportTableWriter table(*columns, {"n"}, out, layout);
        for (int i = 0; i < 3000; ++i) {
            const std::string number = std::to_string(i);
            table.AddRow({number});
        }
        table.Finish();
        const std::string html = out.output.c_str();
        int found = 0;
        for (size_t at = 0; (at = html.find("row\"><td", at)) != std::string::npos; ++at)
            ++found;
        CHECK(found == c.shown + 1);  // with the total
        CHECK(html.find("<td>4498500</td></tr></tfoot>") != std::string::npos);
        CHECK(html.find(c.count) != std::string::npos);
    }
}

TEST_CASE("each series has its heading and its own totals, on the page where it ends") {
    const auto columns = Columns("who text Who\nn number N \"\" \"\" \"\" sum\n");
    const std::vector<Row> rows = {
        {"Sales", "Ann", "1"}, {"Sales", "Ben", "2"}, {"<Shop>", "Cid", "4"}, {"", "Dot", "8"}};
    // Headings, names and totals in their order, for two rows a page from the given one on.
    const auto shown = [&](uint64_t page) {
        ReportTableLayout layout;
        layout.seriesTitle = "Department";
        layout.seriesKeys = {"DEPT", ""};
        layout.view.rows = page == 0 ? ReportView::kAllRows : 3;
        layout.view.page = page == 0 ? 1 : page;
        UStringWebRender out;
        ReportTableWriter table(*columns, {"dept", "who", "n"}, out, layout);
        for (const Row& row : rows)
            table.AddRow(row);
        table.Finish();
        std::string html = out.output.c_str();
        html.erase(0, html.find("<tbody>"));
        html.erase(html.find("</table>"));
        std::string text;
        bool inTag = false;
        for (const char c : html) {
            inTag = inTag || c == '<';
            if (!inTag && c != '\n') text += c;
            if (c != '>') continue;
            inTag = false;
            if (!text.empty() && text.back() != ' ') text += ' ';
        }
        return text;
    };
    CHECK(shown(0) ==
          "Department: Sales Ann 1 Ben 2 Total 3 Department: &lt;Shop&gt; Cid 4 Total 4 "
          "Department: (none) Dot 8 Total 8 Total 15 ");
    CHECK(shown(1) ==
          "Department: Sales Ann 1 Ben 2 Total 3 Department: &lt;Shop&gt; Cid 4 Total 4 "
          "Total 15 ");
    CHECK(shown(2) == "Department: (none) Dot 8 Total 8 Total 15 ");
}

TEST_CASE("totals come from the raw values of all rows") {
    const struct {
        const char* what;
        const char* columnFile;
        std::vector<Row> rows;  // of name, a, b
        const char* totals;
    } cases[] = {
        {"money sums exactly",
         "a money Cost \"\" \"\" \"\" sum\n",
         {{"", "0.0049", ""}, {"", "0.0049", ""}, {"", "0.0002", ""}},
         "0.01 "},
        {"nulls and texts add nothing, but count",
         "name text N \"\" \"\" \"\" count\na number A \"\" \"\" \"\" sum\n",
         {{"x", "4", ""}, {"y", "", ""}, {"z", "four", ""}},
         "3 4 "},
        {"an average is weighted by its divisor, not one of averages",
         "a time Talk \"\" \"\" \"\" avg a b\n",
         {{"", "100", "10"}, {"", "20", "1"}},
         "0:00:11 "},
        {"a percentage of sums",
         "name percent Share \"\" \"\" \"\" percent a b\n",
         {{"100", "1", "1"}, {"0", "0", "2"}},
         "33.3% "},
        {"an average of numbers has one decimal, away from zero",
         "a number R \"\" \"\" \"\" avg a b\n",
         {{"", "-1", "3"}, {"", "-1", "0"}},
         "-0.7 "},
        {"division by zero is no number",
         "a time Talk \"\" \"\" \"\" avg a b\nb percent P \"\" \"\" \"\" percent a b\n",
         {{"", "5", "0"}, {"", "5", ""}},
         "- - "},
        {"only the first column without a total carries the label",
         "name text N\nb number B\na number A \"\" \"\" \"\" sum\n",
         {{"x", "1", "2"}},
         "Total 1 "},
        {"sums beyond 64 bits",
         "a number A \"\" \"\" \"\" sum\n",
         {{"", "9223372036854775807", ""}, {"", "9223372036854775807", ""}},
         "18446744073709551614 "},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const std::string totals = TotalRow(c.columnFile, {"name", "a", "b"}, c.rows);
        CHECK((totals.starts_with(' ') ? totals.substr(1) : totals) == c.totals);
    }
}

TEST_CASE("a definition that does not fit its query is refused with the field's name") {
    const struct {
        const char* columnFile;
        const char* named;
    } cases[] = {
        {"", "is empty"},
        {"missing text Heading \"\" \"\" \"\" sum\n", "\"missing\" of this report is not among"},
        {"a colour Heading\n", "unknown style \"colour\""},
        {"a number Heading \"\" \"\" \"\" median\n", "unknown total \"median\""},
        {"a number Heading \"\" \"\" \"\" avg a nosuch\n", "needs the field \"nosuch\""},
        {"a number Heading \"\" \"\" \"\" percent\n", "needs the field \"\""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.columnFile);
        CHECK(Refusal(c.columnFile, {"a"}).find(c.named) != std::string::npos);
    }
}
