#include "cgiFramework/WebContext.h"

#include <doctest/doctest.h>

#include "unit/cgiFramework/TestRequest.h"

namespace {

constexpr char kConfig[] = "/Norvane/config/Lumora.cfg";

std::string Value(WebContext& ctx, const char* name) {
    return ctx.HasWebArgument(name) ? ctx[name].Text() : "(none)";
}

}  // namespace

TEST_CASE("a query string is decoded, and the first of equal names wins") {
    const struct {
        const char* what;
        const char* query;
        const char* name;
        const char* value;
    } cases[] = {
        {"first wins", "a=1&a=2", "a", "1"},
        {"plus is a space", "a=x+y", "a", "x y"},
        {"two hex digits of either case", "a=%4a%4A", "a", "JJ"},
        {"two per-cent signs are one", "a=50%%&b=1", "a", "50%"},
        {"a cut escape stays as it is", "a=%4", "a", "%4"},
        {"a zero byte is dropped", "a=x%00y", "a", "xy"},
        {"a raw apostrophe holds the ampersand", "q=it's&x", "q", "it's&x"},
        {"an encoded apostrophe is data", "q=it%27s&x=1", "x", "1"},
        {"double quotes hold the ampersand and stay", "q=\"a&b\"&x=1", "q", "\"a&b\""},
        {"an ampersand does not end a name", "flag&x=1", "flag&x", "1"},
        {"runs of separators are skipped", "&&a=1&&&b=2", "b", "2"},
        {"an empty value is a value", "a=&b=2", "a", ""},
        {"names are decoded too", "%61b=1", "ab", "1"},
        {"a line end does not end a browser's value", "a=x%0Ay&b=1", "a", "x\ny"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        TestRequest request;
        request.Set("QUERY_STRING", c.query);
        WebContext ctx(kConfig, nullptr);
        CHECK(Value(ctx, c.name) == c.value);
    }
}

TEST_CASE("a setting beats the browser's argument and stays out of URLs") {
    TestRequest request;
    request.Write("Norvane/config/Lumora.cfg", "db=lumora\npagename=fixed\r\nuser='a\nb'\n");
    request.Set("QUERY_STRING", "pagename=other&db=mine&x=1");
    WebContext ctx(kConfig, nullptr);
    CHECK(Value(ctx, "pagename") == "fixed");
    CHECK(Value(ctx, "user") == "'a\nb'");
    CHECK(std::string(ctx.GetSetting("db")) == "lumora");
    CHECK(std::string(ctx.GetSetting("x", "none")) == "none");
    CHECK(std::string(ctx.GetFullURL(nullptr)) == "/lumora/lumora.cgi?x=1");
}

TEST_CASE("URLs carry the arguments of their kind, escaped, and the caller's value wins") {
    TestRequest request;
    request.Set("QUERY_STRING", "pagename=my page&sessionId=77&q=1%26%25%27%2B&empty=&x<y=1");
    WebContext ctx(kConfig, nullptr);
    ctx["pagename"].type_ = WebArgument::Global;
    const struct {
        const char* what;
        std::string url;
        const char* expected;
    } cases[] = {
        {"plain", ctx.GetURL(nullptr), "?sessionId=77"},
        {"page", ctx.GetPageURL(nullptr), "?pagename=my%20page&sessionId=77"},
        {"full", ctx.GetFullURL(nullptr), "?pagename=my%20page&sessionId=77&q=1%26%25%27+"},
        {"extra text", ctx.GetPageURL("a=%s&b=%d", "x y'", 2),
         "?pagename=my%20page&sessionId=77&a=x%20y%27&b=2"},
        {"the extra text's own name wins", ctx.GetFullURL("Q=2&pagename=p"),
         "?sessionId=77&Q=2&pagename=p"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(c.url == std::string("/lumora/lumora.cgi") + c.expected);
    }
    // The extra text holds "sessionId=", so the outer URL leaves its own out.
    CHECK(std::string(ctx.GetURL("u=%s", ctx.GetURL("a=1"))) ==
          "/lumora/lumora.cgi?u=/lumora/lumora.cgi?sessionId=77&a=1");
}

TEST_CASE("looking an argument up by name creates it, asking for it does not") {
    TestRequest request;
    WebContext ctx(kConfig, nullptr);
    CHECK(std::string(ctx.GetVariable("x")).empty());
    CHECK_FALSE(ctx.HasVariable("x"));
    CHECK(std::string(ctx["x"].Text()).empty());
    CHECK(ctx.HasWebArgument("x"));

    ctx["x"].SetDef("5");
    CHECK(ctx["x"].Int() == 5);
    CHECK_FALSE(ctx["x"] == "5");
    *ctx.GetWebArgument("x", WebArgument::Hidden) = "hidden";
    CHECK(std::string(ctx["x"].Text()) == "5");
    ctx.RemoveWebArgument("x");
    CHECK_FALSE(ctx.HasWebArgument("x"));
}

TEST_CASE("arguments of a deeper level go with their level") {
    TestRequest request;
    request.Set("QUERY_STRING", "a=1");
    WebContext ctx(kConfig, nullptr);
    ctx.NewArguments();
    ctx.SetWebArgument("b", 2);
    ctx.FlushArguments(0);
    CHECK(ctx.HasWebArgument("b"));
    ctx.FlushArguments(-1);
    CHECK_FALSE(ctx.HasWebArgument("b"));
    CHECK(ctx.HasWebArgument("a"));
}

TEST_CASE("an argument is found again in a URL") {
    TestRequest request;
    request.Set("QUERY_STRING", "pagename=report&n=two words");
    WebContext ctx(kConfig, nullptr);
    const struct {
        const char* name;
        const char* url;
        bool same;
    } cases[] = {
        {"pagename", "/l?x=1&PageName=report", true},
        {"pagename", "/l?pagename=report&y=2", true},
        {"pagename", "/l?pagename=reports", false},
        {"pagename", "/l", false},
        {"pagename", nullptr, false},
        {"n", "/l?n=two%20words", false},
        {"missing", "/l?missing=&x", true},
        {"missing", "/l?missing=1", false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.url);
        CHECK(ctx.IsSameArgument(c.name, c.url) == c.same);
    }
}

TEST_CASE("cookies are read as they stand and written without control bytes") {
    TestRequest request;
    request.Set("HTTP_COOKIE", "a=1; b=x%20y;c;  d=2=3");
    WebContext ctx(kConfig, nullptr);
    CHECK(ctx.GetWebCookie("a")->value == "1");
    CHECK(ctx.GetWebCookie("b")->value == "x%20y");
    CHECK(ctx.HasWebCookie("c"));
    CHECK(ctx.GetWebCookie("d")->value == "2=3");
    CHECK_FALSE(ctx.GetWebCookie("a")->updated);

    ctx.SetWebCookie("a", "x\r\n\x01\xC3\xA9;");
    CHECK(ctx.GetWebCookie("a")->value == "x%0D%0A%01\xC3\xA9;");
    CHECK(ctx.GetWebCookie("a")->updated);
    ctx.GetWebCookie("a")->SetExpired();
    CHECK(ctx.GetWebCookie("a")->expires == "Sat, 16-Sep-2006 00:00:00 GMT");
}

TEST_CASE("a further round replaces the arguments by those of its query") {
    TestRequest request;
    request.Write("Norvane/config/Lumora.cfg", "db=lumora\n");
    request.Set("QUERY_STRING", "a=1&b=pagename%3Dx%26a%3D2");
    WebContext ctx(kConfig, nullptr);
    ctx.ScanWebArguments(ctx["b"].Text());  // lies in an argument that goes
    CHECK(Value(ctx, "a") == "2");
    CHECK(Value(ctx, "pagename") == "x");
    CHECK(Value(ctx, "b") == "(none)");
    CHECK(Value(ctx, "db") == "lumora");
}
