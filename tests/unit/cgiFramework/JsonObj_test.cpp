#include "cgiFramework/JsonObj.h"

#include <doctest/doctest.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "unit/cgiFramework/TestRequest.h"

namespace {

// A text in a heap block of its own, so that the sanitizer sees a step past the terminator.
class Text {
  public:
    explicit Text(const std::string& text) : bytes_(text.begin(), text.end()) {
        bytes_.push_back('\0');
        bytes_.shrink_to_fit();
    }
    char* get() { return bytes_.data(); }

  private:
    std::vector<char> bytes_;
};

std::string Outcome(const std::string& text) {
    Text copy(text);
    try {
        JsonObj top(copy.get(), nullptr, 0);
        return std::to_string(top.type) + "@" + std::to_string(top.end - copy.get());
    } catch (const char* complaint) {
        return complaint;
    }
}

std::string Ask(JsonObj& top, const char* path) {
    UString result("-");
    try {
        top.Query(path, result);
    } catch (const char* complaint) {
        return complaint;
    }
    return result.c_str();
}

}  // namespace

TEST_CASE("each kind of value is read, and its end is its last character") {
    const struct {
        const char* text;
        const char* outcome;
    } cases[] = {
        {"{}", "3@1"},
        {" \t\r\n\v\f[ ]", "4@8"},
        {"\"a\\b\\f\\n\\r\\t\\\"\\\\\\/\"x", "1@18"},
        {"-12.5e+1,", "2@7"},
        {"123456789012345678", "2@17"},
        {"truex", "5@3"},
        {"false", "6@4"},
        {"null", "7@3"},
        {"[1,]", "4@3"},
        {"{\"a\" : 1 , }", "3@11"},
        {"{\"\":{\"b\":[true,null]}}", "3@21"},
        {"", "PARSE7"},
        {"x", "PARSE7"},
        {"-", "PARSE7"},
        {"tru", "PARSE7"},
        {"[,1]", "PARSE7"},
        {"{a:1}", "PARSE1"},
        {"{", "PARSE1"},
        {"{\"a", "PARSE2"},
        {"{\"a\" 1}", "PARSE3"},
        {"{\"a\":1", "PARSE4"},
        {"{\"a\":1]", "PARSE4"},
        {"\"a", "PARSE5"},
        {"[1", "PARSE6"},
        {"[1 2]", "PARSE6"},
        {"\"\\u0041\"", "PARSE8"},
        {"\"\\", "PARSE8"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        CHECK(Outcome(c.text) == c.outcome);
    }
}

TEST_CASE("a text cut anywhere is refused, and nothing behind it is read") {
    const std::string whole = "{\"a\":[1,-2.5e3,\"x\\\"y\",{\"b\":true}],\"c\":null, \"d\":{}}";
    CHECK(Outcome(whole) == "3@" + std::to_string(whole.size() - 1));
    for (size_t size = 0; size < whole.size(); ++size) {
        CAPTURE(size);
        CHECK(Outcome(whole.substr(0, size)).starts_with("PARSE"));
    }
}

TEST_CASE("values carry what was read") {
    Text text(
        "{\"n\":-12,\"big\":123456789012345678,\"f\":0.25,\"s\":\"a\\n\\\"b\\/\\\\\",\"e\":\"\","
        "\"o\":{\"in\":[7]},\"n\":2}");
    JsonObj top(text.get(), nullptr, 0);
    CHECK(top.name == "__TOP__");
    CHECK(top.Find("n")->number == -12);
    CHECK(top.Find("big")->number == 123456789012345678.0);
    CHECK(top.Find("f")->number == 0.25);
    CHECK(std::string(top.String("s")) == "a\n\"b/\\");
    CHECK(std::string(top.String("e")).empty());
    CHECK(std::string(top.String("n")).empty());
    CHECK(std::string(top.String("missing")).empty());
    CHECK(top.Find("missing") == nullptr);
    const JsonObj& element = *top.Find("o")->Find("in")->values.First();
    CHECK(element.level == 3);
    CHECK(element.parent == top.Find("o")->Find("in"));
    CHECK(element.name.IsEmpty());
    CHECK(top.values.size() == 7);
}

TEST_CASE("a long string grows its buffer by doubling") {
    const std::string content(1000, 'x');
    Text text("\"" + content + "\\n\"");
    const JsonObj top(text.get(), nullptr, 0);
    CHECK(top.String() == content + "\n");
    CHECK(top.string.len == 1001);
    CHECK(top.string.alloc_len == 1024);
    CHECK(*top.string.end == '\0');
}

TEST_CASE("arrays read backwards when asked") {
    JsonObj::reverse_arrays = true;
    Text text("[1,2,3]");
    JsonObj top(text.get(), nullptr, 0);
    Text more("\"x\":[4,5]");
    top.Expand(more.get());
    JsonObj::reverse_arrays = false;
    std::string numbers;
    for (const JsonObj& element : top.values)
        numbers += std::to_string(static_cast<int>(element.number));
    CHECK(numbers == "54321");
}

TEST_CASE("an array is expanded by the elements of another text") {
    const struct {
        const char* text;
        const char* outcome;
    } cases[] = {
        {" \"more\" : [3,4]", "4"}, {"\"more\":[]", "2"},
        {"more:[3]", "PARSE1"},     {"\"more", "PARSE2"},
        {"\"more\"[3]", "PARSE3"},  {"\"more\":3", "attempt to Expand with non-array data"},
        {"\"more\":[3}", "PARSE6"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        Text text("[1,2]");
        Text more(c.text);
        JsonObj top(text.get(), nullptr, 0);
        std::string outcome;
        try {
            top.Expand(more.get());
            outcome = std::to_string(top.values.size());
        } catch (const char* complaint) {
            outcome = complaint;
        }
        CHECK(outcome == c.outcome);
    }
    Text object("{}");
    Text more("\"more\":[3]");
    JsonObj top(object.get(), nullptr, 0);
    CHECK_THROWS_WITH_AS(top.Expand(more.get()), "attempt to Expand a non-array", const char*);
}

TEST_CASE("queries walk to a child of the named type") {
    Text text(
        "{\"elements\":[{},{}],\"o\":{\"n\":1,\"t\":true,\"f\":false,\"z\":null,\"s\":\"x\"}}");
    JsonObj top(text.get(), nullptr, 0);
    const char unrecognised[] = "JsonObj::Query - unrecognised find type";
    const struct {
        const char* path;
        const char* outcome;
    } cases[] = {
        {"SZ", "2"},
        {"FA:elements;SZ", "2"},
        {"FA:elements", "-"},
        {"FO:elements;SZ", "-"},
        {"FO:o;SZ;FX:ignored", "5"},
        {"FO:o;FN:n;SZ", "0"},
        {"FO:o;FT:t;SZ", "0"},
        {"FO:o;FF:f;SZ", "0"},
        {"FO:o;Fn:z;SZ", "0"},
        {"FO:o;FS:s;SZ", unrecognised},
        {"FS:missing;SZ", "-"},
        {"", "-"},
        {"X", unrecognised},
        {"FA:elements;;SZ", unrecognised},
        {"FA", "JsonObj::Query - missing colon"},
        {"F", "JsonObj::Query - missing colon"},
        {"FA:", "JsonObj::Query - missing find arg"},
        {"FA:;SZ", "JsonObj::Query - missing find arg"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.path);
        CHECK(Ask(top, c.path) == c.outcome);
    }
}

TEST_CASE("times are formatted in local time, and what is none is not") {
    TestRequest zone;
    zone.Set("TZ", "UTC-1");  // an hour ahead
    tzset();
    Text text(
        "{\"t\":1700000000,\"s\":\"1\",\"big\":1e300,\"nan\":-nan,\"y\":253402300799,\"z\":0}");
    const JsonObj top(text.get(), nullptr, 0);
    char buffer[20];
    CHECK(std::string(top.GetDateTime("t", buffer)) == "2023-11-14 23:13:20");
    CHECK(std::string(top.GetDateTime("z", buffer)) == "1970-01-01 01:00:00");
    for (const char* name : {"s", "big", "nan", "y", "missing"}) {
        CAPTURE(name);
        CHECK(std::string(top.GetDateTime(name, buffer)).empty());
    }
}

TEST_CASE("nesting is limited, and wide and deep trees are freed without recursion") {
    const auto nested = [](size_t depth) {
        return std::string(depth, '[') + std::string(depth, ']');
    };
    CHECK(Outcome(nested(513)) == "4@1025");
    CHECK(Outcome(nested(514)) == "JSON text nested too deeply");
    CHECK(Outcome(std::string(1'000'000, '[')) == "JSON text nested too deeply");
    CHECK(Outcome("[" + std::string(200'000, ' ') + "1" + std::string(200'000, ',')) == "PARSE7");

    Text text("[]");
    JsonObj top(text.get(), nullptr, 0);
    JsonObj* deepest = &top;
    for (int level = 1; level < 200'000; ++level) {
        Text inner("[]");
        auto child = std::make_unique<JsonObj>(inner.get(), deepest, level);
        JsonObj* added = child.get();
        deepest->values.Append(child.release());
        deepest = added;
    }
    CHECK(top.values.size() == 1);
}

TEST_CASE("a node without a parent stands at the top") {
    Text text("1");
    CHECK_THROWS_WITH_AS(JsonObj(text.get(), nullptr, 1), "null parent for non top level object",
                         const char*);
}

TEST_CASE("a tree is dumped to the error stream") {
    TestRequest request;
    const std::string path = (request.root / "dump").string();
    Text text("{\"a\":[1.5,\"x\"],\"b\":true}");
    const JsonObj top(text.get(), nullptr, 0);
    fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    REQUIRE(freopen(path.c_str(), "w", stderr) != nullptr);
    top.Print(0);
    fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
    CHECK(request.Read("dump") ==
          "name: __TOP__\tobject:\n"
          "  name: a\tarray:\n"
          "    number: \"1.5\"\n"
          "    string: \"x\"\n"
          "  name: b\ttrue\n");
}
