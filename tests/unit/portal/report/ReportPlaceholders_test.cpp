#include "portal/report/ReportPlaceholders.h"

#include <doctest/doctest.h>

#include <cstring>
#include <string>

TEST_CASE("placeholders are replaced once, from left to right") {
    const std::vector<ReportPlaceholder> values = {
        {"date", "BETWEEN 1 AND 2"}, {"entity", "='[date]'"}, {"var", "[var]"}, {"empty", ""}};
    const struct {
        const char* what;
        const char* text;
        const char* expected;
    } cases[] = {
        {"none", "SELECT 1", "SELECT 1"},
        {"every occurrence", "a [date] b [date]", "a BETWEEN 1 AND 2 b BETWEEN 1 AND 2"},
        {"at both ends", "[empty]x[empty]", "x"},
        {"a user's text that looks like one stays data", "A_Name [entity] AND t [date]",
         "A_Name ='[date]' AND t BETWEEN 1 AND 2"},
        {"a value that holds its own name ends", "[var]", "[var]"},
        {"one name is the beginning of another", "[date][dates", "BETWEEN 1 AND 2[dates"},
        {"other brackets stay", "a[ date ] [] [a-z] [", "a[ date ] [] [a-z] ["},
        {"a bracket before a placeholder", "[[date]]", "[BETWEEN 1 AND 2]"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(FillPlaceholders(c.text, values) == c.expected);
    }
}

TEST_CASE("an unknown placeholder is named") {
    for (const char* text : {"SELECT [Date]", "SELECT [dates]", "[groupid_2]"}) {
        CAPTURE(text);
        std::string thrown;
        try {
            FillPlaceholders(text, {{"date", "x"}});
        } catch (const char* message) {
            thrown = message;
        }
        const std::string name = strchr(text, '[');
        CHECK(thrown == "The report's query uses the unknown placeholder " + name + ".");
    }
}
