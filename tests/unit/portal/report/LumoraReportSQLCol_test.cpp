#include "portal/report/LumoraReportSQLCol.h"

#include <doctest/doctest.h>

#include <cstring>
#include <memory>

#include "unit/portal/report/ColumnFile.h"

namespace {

constexpr char kFolder[] = "/Norvane/config/reports/";

// On the heap: the array is large for a stack.
std::unique_ptr<LumoraReportSQLCol> Read(const std::string& content) {
    WriteColumnFile("test.col", content);
    return std::make_unique<LumoraReportSQLCol>(kFolder, "test.col");
}

// Text that was thrown, or "" when the file was read.
std::string Refusal(const char* dirname, const char* reportFile) {
    try {
        const auto columns = std::make_unique<LumoraReportSQLCol>(dirname, reportFile);
        return "";
    } catch (const char* message) {
        return message;
    }
}

}  // namespace

TEST_CASE("a column file's words go into the fields in their order") {
    const auto file = Read(
        "talk time \"Talk time\" calllogdrill \"field=talk day=[day]\" \"Answered calls\" avg "
        "talk answered tenth\r\n"
        "\n"
        "short text");
    REQUIRE(file->count() == 2);
    const LumoraSQLColumnDescription& talk = file->columns()[0];
    CHECK(strcmp(talk.fieldname, "talk") == 0);
    CHECK(strcmp(talk.style, "time") == 0);
    CHECK(strcmp(talk.description, "Talk time") == 0);
    CHECK(strcmp(talk.linkpage, "calllogdrill") == 0);
    CHECK(strcmp(talk.linkdetail, "field=talk day=[day]") == 0);
    CHECK(strcmp(talk.grouptitle, "Answered calls") == 0);
    CHECK(strcmp(talk.totaltype, "avg") == 0);
    CHECK(strcmp(talk.avgfield, "talk") == 0);
    CHECK(strcmp(talk.percentdiv, "answered") == 0);

    const LumoraSQLColumnDescription& shortLine = file->columns()[1];
    CHECK(strcmp(shortLine.fieldname, "short") == 0);
    CHECK(*shortLine.description == '\0');
    CHECK(*shortLine.percentdiv == '\0');

    const LumoraSQLColumnDescription& terminator = *file->end();
    CHECK(*terminator.fieldname == '\0');
    CHECK(*terminator.style == '\0');
}

TEST_CASE("an empty word keeps its place and an open quote runs to the end of its line") {
    const auto file = Read(
        "name \"\" \"\" \"\" \"\" Group sum\n"
        "b text \"open heading\n"
        "c text Last\n");
    REQUIRE(file->count() == 3);
    CHECK(*file->columns()[0].description == '\0');
    CHECK(strcmp(file->columns()[0].grouptitle, "Group") == 0);
    CHECK(strcmp(file->columns()[0].totaltype, "sum") == 0);
    CHECK(strcmp(file->columns()[1].description, "open heading") == 0);
    CHECK(strcmp(file->columns()[2].description, "Last") == 0);
}

TEST_CASE("long words are cut to their fields, whole characters only") {
    const std::string tooLong(1000, 'x');
    // 255 bytes fit into a description: the last two-byte character begins at the 255th.
    const std::string accents = std::string(254, 'e') + "\xC3\xA9\xC3\xA9";
    const auto file = Read(tooLong + " " + tooLong + " " + accents + " a b c " + tooLong + "\n");
    REQUIRE(file->count() == 1);
    const LumoraSQLColumnDescription& column = file->columns()[0];
    CHECK(strlen(column.fieldname) == 63);
    CHECK(strlen(column.style) == 63);
    CHECK(std::string(column.description) == std::string(254, 'e'));
    CHECK(std::string(column.totaltype) == "xxxxxxxxx");
}

TEST_CASE("columns beyond the 199th are dropped and the array stays terminated") {
    std::string content;
    for (int i = 0; i < 300; ++i)
        content += "field" + std::to_string(i) + " text\n";
    const auto file = Read(content);
    CHECK(file->count() == 199);
    CHECK(strcmp(file->columns()[198].fieldname, "field198") == 0);
    CHECK(*file->columns()[199].fieldname == '\0');
}

TEST_CASE("column files are found below the configuration folder only") {
    WriteColumnFile("here.col", "a text\n");
    WriteColumnFile("../std.col", "a text\n");
    WriteColumnFile("../../outside.col", "a text\n");
    CHECK(Refusal(kFolder, "here.col") == "");
    CHECK(Refusal(kFolder, "../std.col") == "");
    CHECK(Refusal("/Norvane/config/reports", "//here.col") == "");
    for (const char* name : {"missing.col", "", "..", "../../outside.col", "../../../etc/passwd"}) {
        CAPTURE(name);
        CHECK(Refusal(kFolder, name) == "Cannot open SQLCol file");
    }
    CHECK(Refusal("/etc/", "passwd") == "Cannot open SQLCol file");
}
