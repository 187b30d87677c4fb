#include "common/CommandLine.h"

#include <doctest/doctest.h>

#include <string>

namespace {

// The words, each followed by a bar.
std::string Words(const CommandLine& line) {
    std::string all;
    for (int i = 0; i < line.argc(); ++i)
        all += std::string(line[i]) + "|";
    return all;
}

}  // namespace

TEST_CASE("words are parted by runs of separators outside double quotes") {
    const struct {
        const char* text;
        const char* separators;
        const char* expected;
    } cases[] = {
        {"one two", " \t", "one|two|"},
        {"  one\t \ttwo  ", " \t", "one|two|"},
        {"name \"Total cost\" \"\" x", " \t", "name|Total cost||x|"},
        {"a\"b c\"d", " \t", "ab cd|"},
        {"\"never closed ", " \t", "never closed |"},
        {"1,4,32,0", " \t,", "1|4|32|0|"},
        {"\"a,b\",c", ",", "a,b|c|"},
        {"", " \t", ""},
        {" \t ", " \t", ""},
        {nullptr, " \t", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        CHECK(Words(CommandLine(c.text, c.separators)) == c.expected);
    }
    const CommandLine line("one");
    CHECK(std::string(line[1]).empty());
    CHECK(std::string(line[-1]).empty());
}

TEST_CASE("text and words beyond the limits are dropped") {
    const CommandLine longWord(std::string(9000, 'x').c_str());
    CHECK(std::string(longWord[0]).size() == 8192);
    std::string many;
    for (int i = 0; i < 1500; ++i)
        many += "w ";
    CHECK(CommandLine(many.c_str()).argc() == 1000);
}
