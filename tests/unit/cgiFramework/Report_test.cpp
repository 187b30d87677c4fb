#include "cgiFramework/Report.h"

#include <doctest/doctest.h>

#include "cgiFramework/WebContext.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

const std::string kTable =
    "# comment\n\nname: a.list\ntype: Table\ntitle: A List\ncustomer: t.c\nfrom: T AS t\n"
    "key: t.id\ncolumn: n text \"Name of it\" \"CONCAT(t.a, ' ')\"\n";
const std::string kForm =
    "name: a.form\ntype: Form\ntitle: A Form\ncustomer: id\ntable: T\n"
    "field: n number \"Number\" attribute:num\nrange: 1 9\nattributes: A o n v\n";

}  // namespace

TEST_CASE("a definition file is read key by key") {
    const Report list("a.report", kTable + "search: n\nlink: n pagename=b&index=[n]\nneeds: 4\r\n");
    CHECK(list.problem.empty());
    CHECK(list.name == "a.list");
    CHECK(list.detail.access.needs == 4);
    REQUIRE(list.detail.table.columns.size() == 1);
    const SQLTableColumn& column = list.detail.table.columns[0];
    CHECK(column.heading == "Name of it");
    CHECK(column.sql == "CONCAT(t.a, ' ')");
    CHECK(column.searched);
    CHECK(column.link == "pagename=b&index=[n]");

    const Report form("b.report", kForm + "pattern: [0-9]+\nhint: One: two\n");
    CHECK(form.problem.empty());
    REQUIRE(form.detail.form.row.fields.size() == 1);
    const SQLField& field = form.detail.form.row.fields[0];
    CHECK(field.attribute);
    CHECK(field.column == "num");
    CHECK(field.max == 9);
    CHECK(field.hint == "One: two");
    CHECK(field.check("7").empty());
    CHECK_FALSE(field.check("7x").empty());
}

TEST_CASE("what is wrong with a definition is told with its line") {
    const struct {
        std::string text;
        const char* problem;
    } cases[] = {
        {kTable + "colum: x", "line 10: there is no key colum"},
        {kTable + "no colon", "line 10: a line is \"key: value\""},
        {kTable + "search: other", "line 10: there is no column other above"},
        {kTable + "column: x loud \"H\" \"1\"", "line 10: there is no style loud"},
        {kTable + "column: x;y text \"H\" \"1\"", "line 10: \"x;y\" is no name"},
        {kTable + "needs: four", "line 10: \"four\" is no whole number"},
        {kForm + "pattern: [", "line 9: the pattern is no regular expression"},
        {"type: Table", "line 1: the page needs a name"},
        {"name: x\ntype: pdf", "line 2: the page needs the key title"},
        {"name: x\ntype: Form\ntitle: X\ncustomer: id", "line 4: the page needs the key table"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        const Report report("f.report", c.text);
        CHECK(report.problem.find(c.problem) != std::string::npos);
    }
}

TEST_CASE("the report folder's definitions are listed once, in the order of their files") {
    TestRequest request;
    request.Write("Norvane/config/b.report", kForm);
    request.Write("Norvane/config/a.report", kTable);
    request.Write("Norvane/config/.hidden.report", kTable);
    request.Write("Norvane/config/a.col", "x");
    WebContext ctx(nullptr, "/Norvane/config/");
    ReportBuildPages(ctx);
    ReportBuildPages(ctx);
    REQUIRE(ctx.reports.size() == 2);
    CHECK(static_cast<Report*>(ctx.reports.First())->name == "a.list");
    CHECK(static_cast<Report*>(ctx.reports.Last())->type == "Form");

    WebContext empty(nullptr, "/Norvane/nowhere/");
    ReportBuildPages(empty);
    CHECK(empty.reports.empty());
}
