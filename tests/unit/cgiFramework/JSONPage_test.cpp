#include "cgiFramework/JSONPage.h"

#include <doctest/doctest.h>

#include <memory>
#include <string>

#include "cgiFramework/JSONText.h"
#include "unit/cgiFramework/Rendered.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

// The document read and rendered again, or what reading it threw.
std::string Parsed(const std::string& text) {
    try {
        JSONObject object(text.c_str());
        return Rendered(object);
    } catch (const char* complaint) {
        return complaint;
    }
}

constexpr char kBraces[] = "JSON String did Not Parse ({})";
constexpr char kBrackets[] = "JSON String did Not Parse ([])";
constexpr char kQuotes[] = "JSON String did Not Parse (\")";

}  // namespace

TEST_CASE("texts are escaped to the byte") {
    const struct {
        const char* what;
        const char* text;
        const char* value;
    } cases[] = {
        {"letters, digits and UTF-8 pass", "aZ9 \xC3\xA9'<&>\x7F", "aZ9 \xC3\xA9'<&>\x7F"},
        {"quote, slash and the named control bytes", "\"/\b\f\n\t", "\\\"\\/\\b\\f\\n\\t"},
        {"a carriage return stays raw", "a\r\n", "a\r\\n"},
        {"escapes that the text brings stay", "\\n\\r\\\"\\\\\\t", "\\n\\r\\\"\\\\\\t"},
        {"other backslashes are doubled", "\\b\\f\\/\\u0041\\", "\\\\b\\\\f\\\\\\/\\\\u0041\\\\"},
        {"pairs are taken from the left", "\\\\\\n\\\\n", "\\\\\\n\\\\n"},
        {"other control bytes", "\x01\x1F", "\\u0001\\u001F"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(JSONValue(c.text, false).value == c.value);
        CHECK(JSONValue(c.text, true).value == c.value);
    }
}

TEST_CASE("documents render to the byte") {
    JSONPage empty(/*asHtml=*/false);
    CHECK(Rendered(empty) ==
          "Cache-Control: no-cache, no-store, max-age=1, must-revalidate\n"
          "Content-type: application/x-json\n\n{\n}");

    JSONPage page(/*asHtml=*/true);
    page.Add(new JSONPair("t", "x/y", /*raw=*/false));
    page.Add(new JSONPair("n", "-1.5", /*raw=*/true));
    JSONPair& pair = page.Adopt(new JSONPair("l", new JSONArray()));
    JSONItem& array = *pair.GetElement(0);
    array.Add(new JSONValue("a", /*raw=*/false));
    array.Add(new JSONObject());
    const std::string members = "\"t\" : \"x\\/y\",\"n\" : -1.5,\"l\" : [\"a\",{\n}\n]";
    CHECK(Rendered(page) ==
          "Cache-Control: no-cache, no-store, max-age=1, must-revalidate\n"
          "Content-type: text/html;charset=utf-8\n\n{" +
              members + "\n}");
    page.no_top_obj = true;
    page.header = "";
    CHECK(Rendered(page) == members);
}

TEST_CASE("a document carries the cookies") {
    TestRequest request;
    WebContext ctx(nullptr, nullptr);
    ctx.SetWebCookie("sessionId", "7");
    JSONPage page(/*asHtml=*/false);
    page.header = "";
    UStringWebRender out;
    page.Render(ctx, &out);
    CHECK(out.output == "Set-Cookie: sessionId=7; \n{\n}");
}

TEST_CASE("texts are read into items, and render as the same document") {
    const struct {
        const char* what;
        const char* text;
        const char* outcome;
    } cases[] = {
        {"empty", " \r\n\t{ } ", "{\n}"},
        {"every kind", "{\"a\":[1,-0.5e+2,\"x\",true,false,null,{}],\"b\":{\"c\":[]}}",
         "{\"a\" : [1,-0.5e+2,\"x\",true,false,null,{\n}\n],\"b\" : {\"c\" : [\n]\n}\n}"},
        {"escapes stay", "{\"a\\n\":\"\\u00e9\\/\\b\\\\n\"}",
         "{\"a\\n\" : \"\\u00e9\\/\\b\\\\n\"\n}"},
        {"raw control bytes are escaped", "{\"a\":\"x\n\t\r\x01/\"}",
         "{\"a\" : \"x\\n\\t\r\\u0001/\"\n}"},
        {"braces are counted first", "{\"a\":[}", "JSON String did Not Parse ([])"},
        {"no text", "", kBraces},
        {"one brace", "{", kBraces},
        {"a brace in a string counts", "{\"a\":\"{\"}", kBraces},
        {"one bracket", "{\"a\":[1}", kBrackets},
        {"one quote", "{\"a:1}", kQuotes},
        {"a quote behind two backslashes is not counted", "{\"a\":\"\\\\\"}", kQuotes},
        {"crossed", "{\"a\":[1}]", kBrackets},
        {"backwards", "}{", kBraces},
        {"an array is no object", "[]", kBraces},
        {"something behind it", "{} x", kBraces},
        {"no name", "{1:2}", kQuotes},
        {"no colon", "{\"a\" 2}", kBraces},
        {"no value", "{\"a\":}", kBraces},
        {"a comma too many", "{\"a\":1,}", kQuotes},
        {"a comma too many in an array", "{\"a\":[1,]}", kBrackets},
        {"a leading zero", "{\"a\":01}", kBraces},
        {"a cut number", "{\"a\":[1.]}", kBrackets},
        {"a cut exponent", "{\"a\":1e}", kBraces},
        {"a cut word", "{\"a\":tru}", kBraces},
        {"a word run on", "{\"a\":truex}", kBraces},
        {"an unknown escape", "{\"a\":\"\\x\"}", kQuotes},
        {"a cut escape", "{\"a\":\"\\u00g0\"}", kQuotes},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(Parsed(c.text) == c.outcome);
    }
}

TEST_CASE("a document cut anywhere is refused, and nested ones are limited") {
    const std::string whole = "{\"a\":[1,\"x\\\"y\",{\"b\":true}],\"c\":-1.5e3}";
    for (size_t size = 0; size < whole.size(); ++size) {
        CAPTURE(size);
        CHECK(Parsed(whole.substr(0, size)).starts_with("JSON String did Not Parse"));
    }
    const auto nested = [](size_t depth) {
        return "{\"a\":" + std::string(depth, '[') + std::string(depth, ']') + "}";
    };
    CHECK(Parsed(nested(512)).starts_with("{\"a\" : [["));
    CHECK(Parsed(nested(513)) == kBrackets);
    CHECK(Parsed(nested(200'000)) == kBrackets);
}

TEST_CASE("elements are found and copied") {
    TestRequest request;
    WebContext ctx(nullptr, nullptr);
    JSONObject top("{\"a\":1,\"b\":[\"x\\/\",{\"c\":null}],\"a\":2}");
    CHECK(top.isJSONObject());
    CHECK(top.GetElement("a")->GetElement(0)->value == "1");
    CHECK(top.GetElement("missing") == nullptr);
    CHECK(top.GetElement(3) == nullptr);
    CHECK(top.GetElement(-1) == nullptr);
    JSONItem* pair = top.GetElement(1);
    CHECK(pair->isJSONPair());
    CHECK(pair->GetElement(0)->isJSONArray());
    CHECK(pair->GetElement(0)->GetElement(0)->isJSONValue());

    std::unique_ptr<JSONItem> twin(top.copy());
    CHECK(twin->toString(ctx) == top.toString(ctx));
    twin->GetElement("b")->GetElement(0)->GetElement(0)->value = "changed";
    CHECK(twin->toString(ctx) != top.toString(ctx));

    top.Add(new WebValue("\"d\" : %d", 3));  // an item that cannot be copied
    twin.reset(top.copy());
    CHECK(twin->GetElement(3) == nullptr);
}

TEST_CASE("a deep tree is freed without recursion") {
    JSONArray top;
    JSONItem* deepest = &top;
    for (int i = 0; i < 200'000; ++i) {
        JSONPair& pair = deepest->Adopt(new JSONPair("a", new JSONArray()));
        deepest = pair.GetElement(0);
    }
    CHECK(top.contains.size() == 1);
}
