#include <doctest/doctest.h>

#include "cgiFramework/SQLTableFile.h"
#include "cgiFramework/SQLTableQuery.h"
#include "cgiFramework/UrlArgument.h"
#include "cgiFramework/WebContext.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

SQLTableDefinition People() {
    return {.title = "People",
            .from = "People AS p",
            .condition = "p.customerid='1'",
            .key = "p.id",
            .order = "-name",
            .columns = {{.field = "id", .heading = "", .sql = "p.id"},
                        {.field = "name", .heading = "Name", .sql = "p.name", .searched = true},
                        {.field = "number", .heading = "Number", .sql = "p.no", .searched = true}},
            .rowLinks = {}};
}

struct Statement {
    std::string count;
    std::string page;
};

Statement Ask(const char* query) {
    TestRequest request;
    request.Set("QUERY_STRING", query);
    WebContext ctx(nullptr, nullptr);
    SQLTableQuery table(People(), ctx);
    table.SetRows(60);
    return {table.CountStatement().c_str(), table.PageStatement().c_str()};
}

const char kFrom[] = "SELECT p.id, p.name, p.no FROM People AS p WHERE ";

}  // namespace

TEST_CASE("a list's statement takes order and page from the request, and nothing else of it") {
    const struct {
        const char* what;
        const char* query;
        const char* order;
        const char* limit;
    } cases[] = {
        {"nothing asked", "", "p.name DESC, p.id", "25 OFFSET 0"},
        {"another column", "sort=number", "p.no, p.id", "25 OFFSET 0"},
        {"downwards", "sort=number&desc=1", "p.no DESC, p.id", "25 OFFSET 0"},
        {"a column that is not shown", "sort=id", "p.name DESC, p.id", "25 OFFSET 0"},
        {"no column at all", "sort=p.no;DROP", "p.name DESC, p.id", "25 OFFSET 0"},
        {"the last page", "page=3", "p.name DESC, p.id", "25 OFFSET 50"},
        {"beyond the last page", "page=9999999", "p.name DESC, p.id", "25 OFFSET 50"},
        {"before the first", "page=-2", "p.name DESC, p.id", "25 OFFSET 0"},
        {"no page", "page=2x", "p.name DESC, p.id", "25 OFFSET 0"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(Ask(c.query).page ==
              std::string(kFrom) + "(p.customerid='1') ORDER BY " + c.order + " LIMIT " + c.limit);
    }
}

TEST_CASE("each word of a search stands for itself and never leaves its condition") {
    CHECK(Ask("q=%20").count == "SELECT COUNT(*) FROM People AS p WHERE (p.customerid='1')");
    CHECK(Ask("q=a_b%25+O%27x").count ==
          "SELECT COUNT(*) FROM People AS p WHERE (p.customerid='1')"
          " AND (p.name LIKE '%a\\\\_b\\\\%%' OR p.no LIKE '%a\\\\_b\\\\%%')"
          " AND (p.name LIKE '%O\\'x%' OR p.no LIKE '%O\\'x%')");
    // A backslash: once for the pattern, and each of the two once more for the quotes.
    CHECK(Ask("q=%5C").count.find("LIKE '%\\\\\\\\%'") != std::string::npos);
}

TEST_CASE("fields of comma-separated values are quoted where they must, and never formulas") {
    const struct {
        const char* text;
        const char* field;
    } cases[] = {
        {"", ""},
        {"plain", "plain"},
        {"a,b", "\"a,b\""},
        {"say \"hi\"", "\"say \"\"hi\"\"\""},
        {"two\nlines", "\"two\nlines\""},
        {"50% off", "50%% off"},  // the file page makes one of two
        {"=1+1", "\"'=1+1\""},
        {"@SUM(A1)", "\"'@SUM(A1)\""},
        {"-cmd", "\"'-cmd\""},
        {"+", "\"'+\""},
        {"+44 20 7946", "+44 20 7946"},
        {"-12.5", "-12.5"},
    };
    for (const auto& c : cases) {
        std::string field;
        AppendCSVField(field, c.text);
        CHECK(field == c.field);
    }
}

TEST_CASE("cells read as their style says") {
    CHECK(SQLCellText(SQLStyle::kDuration, "93605") == "1 d 2 h 5 s");
    CHECK(SQLCellText(SQLStyle::kDuration, "0") == "0 s");
    CHECK(SQLCellText(SQLStyle::kDuration, "soon") == "soon");
    CHECK(SQLCellText(SQLStyle::kFlag, "1") == "Yes");
    CHECK(SQLCellText(SQLStyle::kFlag, "0").empty());
    CHECK(SQLCellText(SQLStyle::kText, "0") == "0");
}

TEST_CASE("any text arrives as it was in an argument of a URL") {
    std::string url = "x?a=1";
    AppendUrlArgument(url, "q", "a+b#c&d=%'\"\xC3\xA9 ~");
    CHECK(url == "x?a=1&q=a%2Bb%23c%26d%3D%25%27%22%C3%A9%20~");
}
