#include "portal/report/ReportCsvWriter.h"

#include <doctest/doctest.h>

#include "cgiFramework/WebRender.h"

TEST_CASE("a text stands in quotes where it must, and is no formula") {
    const struct {
        const char* text;
        const char* written;
    } cases[] = {
        {"", ""},
        {"plain text; with ' and \t", "plain text; with ' and \t"},
        {"a,b", "\"a,b\""},
        {"say \"hi\"", "\"say \"\"hi\"\"\""},
        {"one\ntwo", "\"one\ntwo\""},
        {"one\rtwo", "\"one\rtwo\""},
        {"=SUM(A1,A2)", "\"'=SUM(A1,A2)\""},
        {"@x", "'@x"},
        {"\tx", "'\tx"},
        {"\r", "\"'\r\""},
        {"+", "'+"},
        {"-", "'-"},
        {"-x", "'-x"},
        {"+44 20", "+44 20"},
        {"-5", "-5"},
        {"'=1", "'=1"},
        {"100%s", "100%s"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        std::string out;
        AppendCsvText(out, c.text);
        CHECK(out == c.written);
    }
}

TEST_CASE("a file of values has one line a row, and knows whether it is ASCII") {
    const auto write = [](const char* name, bool& isAscii) {
        UStringWebRender out;
        ReportCsvWriter csv({{1, ReportStyle::kText, "Name, first", ""},
                             {0, ReportStyle::kTime, "=Talk", ""},
                             {2, ReportStyle::kMoney, "Cost", "Net"},
                             {2, ReportStyle::kMoney, "Cost", ""}},
                            out);
        csv.AddLine("For", "a,b");
        csv.AddEmptyLine();
        csv.AddHeadings();
        csv.AddRow({"3661", name, "-0.005"});
        csv.AddRow({"", "", "n/a"});
        csv.Finish();
        isAscii = csv.isAscii();
        return std::string(out.output.c_str());
    };
    bool isAscii = false;
    CHECK(write("Ann", isAscii) ==
          "For,\"a,b\"\r\n\r\n\"Name, first\",'=Talk,Net: Cost,Cost\r\n"
          "Ann,1:01:01,-0.01,-0.01\r\n,,n/a,n/a\r\n");
    CHECK(isAscii);
    write("Zoë", isAscii);
    CHECK_FALSE(isAscii);
}
