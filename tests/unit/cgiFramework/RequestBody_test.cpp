#include <doctest/doctest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>

#include "cgiFramework/JsonObj.h"
#include "cgiFramework/WebContext.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

using Look = std::function<std::string(WebContext&)>;

std::string LookAt(const Look& look) {
    try {
        WebContext ctx(nullptr, nullptr);
        return look(ctx);
    } catch (const char* complaint) {
        return complaint;
    }
}

// What `look` sees of a request with that body, in a process of its own, since a process reads one
// body. `announced` is the length that the request states; empty for the true one.
std::string Posted(const char* type, const std::string& body, const Look& look,
                   const std::string& announced = "") {
    TestRequest request;
    request.Write("body", body);
    request.Set("CONTENT_TYPE", type);
    request.Set("CONTENT_LENGTH", announced.empty() ? std::to_string(body.size()) : announced);
    const std::string path = (request.root / "body").string();
    const std::string answer = (request.root / "answer").string();
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (freopen(path.c_str(), "r", stdin) == nullptr) _exit(1);
        std::ofstream(answer, std::ios::binary) << LookAt(look);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    CHECK(status == 0);
    return request.Read("answer");
}

constexpr char kUrlencoded[] = "application/x-www-form-urlencoded";

Look Value(const char* name) {
    return [name](WebContext& ctx) -> std::string {
        const WebArgument* argument = ctx.FindWebArgument(name);
        return argument != nullptr ? argument->Text() : "(none)";
    };
}

}  // namespace

TEST_CASE("a posted form adds arguments, unless its type is anything but the exact one") {
    CHECK(Posted(kUrlencoded, "a=1&b=x+y", Value("b")) == "x y");
    CHECK(Posted("application/x-www-form-urlencoded; charset=UTF-8", "a=1", Value("a")) ==
          "(none)");
    CHECK(Posted("application/json", "{}", [](WebContext& ctx) {
              return std::string(ctx.json_post_data == nullptr ? "unread" : "read");
          }) == "unread");
}

TEST_CASE("the announced length is checked, and a shorter body is used as far as it came") {
    CHECK(Posted(kUrlencoded, "a=12345", Value("a"), "5") == "123");
    CHECK(Posted(kUrlencoded, "a=12345", Value("a"), "5000") == "12345");
    CHECK(Posted(kUrlencoded, "a=1", Value("a"), "0") == "(none)");
    CHECK(Posted("multipart/form-data", "", Value("a"), "0") == "(none)");
    for (const char* length : {"-1", "x", "1x", "99999999999999999999"}) {
        CAPTURE(length);
        CHECK(Posted(kUrlencoded, "a=1", Value("a"), length) ==
              "The length of the request is not a number.");
    }
    CHECK(Posted(kUrlencoded, "a=1", Value("a"), "67108865") ==
          "The request is too large: 67108865 bytes, and the limit is 67108864.");
}

TEST_CASE("a JSON body is parsed once, and a broken one spares the error page") {
    CHECK(Posted("application/x-json", "{\"a\":{\"b\":\"c\"}}", [](WebContext& ctx) {
              ctx.ScanWebArguments(nullptr);
              return std::string(ctx.json_post_data->Find("a")->String("b"));
          }) == "c");
    CHECK(Posted("application/x-json", "{\"a\":x}", Value("a")) == "PARSE7");
    CHECK(Posted("application/x-json", std::string("{\"a\":\0}", 7), Value("a")) == "PARSE7");

    const Look none = Value("a");
    TestRequest request;
    request.Write("body", "[1,");
    request.Set("CONTENT_TYPE", "application/x-json");
    request.Set("CONTENT_LENGTH", "3");
    const pid_t child = fork();
    if (child == 0) {
        if (freopen((request.root / "body").c_str(), "r", stdin) == nullptr) _exit(1);
        const bool first = LookAt(none) == "PARSE7" && global_context == nullptr;
        _exit(first && LookAt(none) == "(none)" ? 0 : 2);
    }
    int status = 0;
    waitpid(child, &status, 0);
    CHECK(status == 0);
}

TEST_CASE("a form with files adds its parts behind the query, whose values win") {
    const std::string whole =
        "--b\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\nbody\r\n"
        "--b\r\nContent-Disposition: form-data; name=\"f\"; filename=\"x.wav\"\r\n"
        "Content-Type: audio/wav\r\n\r\n" +
        std::string("\0\1", 2) + "\r\n--b--\r\n";
    const char type[] = "multipart/form-data; boundary=b";
    CHECK(Posted(type, whole, [](WebContext& ctx) {
              const WebArgument& file = ctx["f"];
              const bool fits = file.length == 2 && file.data[0] == '\0' && file.data[1] == '\1';
              return std::string(fits ? file.filename : "wrong") + ctx["a"].Text();
          }) == "x.wavbody");
    CHECK(Posted(type, whole, [](WebContext& ctx) {
              ctx.ScanWebArguments("a=query");
              return std::string(ctx["a"].Text());
          }) == "query");
    CHECK(Posted("multipart/form-data", whole, Value("a")) == "POST Data no boundary");
}

TEST_CASE("arguments are limited in number") {
    std::string body;
    for (int i = 0; i < 500'001; ++i)
        body += std::to_string(i) + "=&";
    CHECK(Posted(kUrlencoded, body, Value("0")) == "The request has too many arguments.");
}

TEST_CASE("arguments are put in the order of their names") {
    TestRequest request;
    request.Set("QUERY_STRING", "b=1&a=2&B=3&A=4&c=5");
    const auto sorted = [](bool ignoreCase, bool ambiguous) {
        WebContext ctx(nullptr, nullptr);
        *ctx.GetWebArgument("b", WebArgument::Hidden) = "6";
        ctx.SortWebArguments(ignoreCase, ambiguous);
        std::string order;
        for (const WebArgument& argument : ctx.arguments)
            order += std::string(argument.name) + argument.value.c_str() + " ";
        CHECK(std::string(ctx["b"].Text()) == "1");
        return order;
    };
    CHECK(sorted(false, false) == "A4 B3 a2 b1 b6 c5 ");
    CHECK(sorted(false, true) == "A4 B3 a2 b1 b6 c5 ");
    CHECK(sorted(true, false) == "A4 a2 B3 b1 b6 c5 ");
    CHECK(sorted(true, true) == "a2 A4 b1 B3 b6 c5 ");
}
