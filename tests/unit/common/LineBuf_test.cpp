#include "common/LineBuf.h"

#include <doctest/doctest.h>

#include <string>
#include <vector>

namespace {

void Add(LineBuf& lines, const std::string& data) {
    // A copy of its own, so that a read past the end shows.
    const std::vector<char> bytes(data.begin(), data.end());
    lines.Add(bytes.data(), static_cast<unsigned>(bytes.size()));
}

// Every line that is complete, each followed by a bar.
std::string Complete(LineBuf& lines) {
    std::string all;
    UString line;
    while (lines.GetLine(line))
        all += std::string(line.c_str()) + "|";
    return all;
}

}  // namespace

TEST_CASE("a run of line ends is one, and an unfinished line waits") {
    LineBuf lines;
    UString line("untouched");
    CHECK_FALSE(lines.GetLine(line));
    CHECK(line == "untouched");
    Add(lines, "ab\r\n\r\ncd");
    CHECK(Complete(lines) == "ab|");
    Add(lines, "");
    CHECK(Complete(lines).empty());
    Add(lines, "\n");
    CHECK(Complete(lines) == "cd|");
    CHECK(Complete(lines).empty());
}

TEST_CASE("line ends at the front give one empty line") {
    LineBuf lines;
    Add(lines, "\n\r\nab\n");
    CHECK(Complete(lines) == "|ab|");
}

TEST_CASE("a CR LF that arrives apart counts twice only when the line was taken in between") {
    LineBuf taken;
    Add(taken, "ab\r");
    CHECK(Complete(taken) == "ab|");
    Add(taken, "\ncd\n");
    CHECK(Complete(taken) == "|cd|");

    LineBuf waiting;
    Add(waiting, "ab\r");
    Add(waiting, "\ncd\n");
    CHECK(Complete(waiting) == "ab|cd|");
}

TEST_CASE("many lines in pieces of every size come out whole") {
    std::string data;
    std::string expected;
    for (int i = 0; i < 500; ++i) {
        const std::string line = "line " + std::string(static_cast<size_t>(i % 37), 'x');
        data += line + "\n";
        expected += line + "|";
    }
    for (size_t piece = 1; piece < 200; piece += 13) {
        CAPTURE(piece);
        LineBuf lines;
        std::string got;
        for (size_t at = 0; at < data.size(); at += piece) {
            Add(lines, data.substr(at, piece));
            if (at % 3 == 0) got += Complete(lines);
        }
        got += Complete(lines);
        CHECK(got == expected);
    }
}
