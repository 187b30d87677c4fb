#include "cgiFramework/MultipartBody.h"

#include <doctest/doctest.h>

#include <string>
#include <vector>

namespace {

// "|" stands for a line end.
std::string Lines(std::string text) {
    for (size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2)
        text.replace(at, 1, "\r\n");
    return text;
}

std::string Field(const std::string& name, const std::string& value) {
    return Lines("--b|Content-Disposition: form-data; name=\"" + name + "\"||") + value + "\r\n";
}

std::string File(const std::string& filename, const std::string& content) {
    return Lines("--b|Content-Disposition: form-data; name=\"f\"; filename=\"" + filename +
                 "\"|Content-Type: text/csv||") +
           content + "\r\n";
}

// A line a part: name, file name, type and content.
std::string Parts(const std::string& body, const char* boundary = "b") {
    std::vector<char> bytes(body.begin(), body.end());
    bytes.push_back('\0');
    bytes.shrink_to_fit();
    MultipartBody parts(bytes.data(), body.size(), boundary);
    std::string found;
    for (;;) {
        WebArgument part;
        if (!parts.Next(part)) return found;
        found +=
            std::string(part.name) + "," + part.filename.c_str() + "," + part.content.c_str() + "=";
        if (part.data != nullptr)
            found += "<" + std::string(part.data, static_cast<size_t>(part.length)) + ">";
        else
            found += part.value.c_str();
        found += "\n";
    }
}

}  // namespace

TEST_CASE("parts are told apart at boundary lines and nowhere else") {
    const std::string end = "--b--\r\n";
    const struct {
        const char* what;
        std::string body;
        std::string parts;
    } cases[] = {
        {"a field", Field("a", "x y") + end, "a,,=x y\n"},
        {"an empty field", Field("a", "") + end, "a,,=\n"},
        {"equal names are both kept", Field("a", "1") + Field("a", "2") + end, "a,,=1\na,,=2\n"},
        {"a name is taken as it stands", Field("a%41", "%41+") + end, "a%41,,=%41+\n"},
        {"zero bytes of a field are dropped", Field("a", std::string("x\0y", 3)) + end, "a,,=xy\n"},
        {"line ends inside", Field("a", "\r\nx\r\n\r\n") + end, "a,,=\r\nx\r\n\r\n\n"},
        {"1000 bytes are copied", Field("a", std::string(1000, 'x')) + end,
         "a,,=" + std::string(1000, 'x') + "\n"},
        {"1001 bytes stay in the body", Field("a", std::string(1001, 'x')) + end,
         "a,,=<" + std::string(1001, 'x') + ">\n"},
        {"a file", File("x.csv", "1,2\r\n") + end, "f,x.csv,text/csv=<1,2\r\n>\n"},
        {"an empty file", File("", "") + end, "f,,text/csv=<>\n"},
        {"a file of zero bytes", File("x", std::string(3, '\0')) + Field("a", "1") + end,
         "f,x,text/csv=<" + std::string(3, '\0') + ">\na,,=1\n"},
        {"boundaries of others inside", File("x", "--c\r\n x--b\r\n--bb\r\n--b x\r\n-- b") + end,
         "f,x,text/csv=<--c\r\n x--b\r\n--bb\r\n--b x\r\n-- b>\n"},
        {"a preamble and blanks behind a boundary",
         Lines("hello|--b \t|Content-Disposition: form-data; name=\"a\"||1|--b--|--b||x|--b--"),
         "a,,=1\n"},
        {"line feeds alone", "--b\nContent-Disposition: form-data; name=\"a\"\n\n1\n--b--\n",
         "a,,=1\n"},
        {"headers without content", Lines("--b|Content-Disposition: form-data; name=\"a\"|--b--"),
         "a,,=\n"},
        {"a boundary at once", Lines("--b|Content-Type: x||--b--"), ",,x=<>\n"},
        {"a name without an end", Lines("--b|Content-Disposition: form-data; name=\"a||1|--b--"),
         "a,,=1\n"},
        {"a field without an end is dropped", Field("a", "1") + Lines("--b|X: y||2"), "a,,=1\n"},
        {"a file without an end reaches to the end", Lines("--b|Content-Type: x||1|2"),
         ",,x=<1\r\n2>\n"},
        {"a file cut in its headers", Lines("--b|Content-Type: x"), ",,x=<>\n"},
        {"no boundary", "a=1&b=2", ""},
        {"nothing", "", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(Parts(c.body) == c.parts);
    }
}

TEST_CASE("a body cut anywhere gives whole fields only, and nothing behind it is read") {
    const std::string whole = Field("a", "1") + File("x", "abc") + Field("c", "3") + "--b--\r\n";
    const std::string all = Parts(whole);
    for (size_t size = 0; size < whole.size(); ++size) {
        const std::string parts = Parts(whole.substr(0, size));
        CAPTURE(size);
        if (size > 60) CHECK(parts.starts_with("a,,=1\n"));
        CHECK(parts.size() <= all.size() + 8);
    }
}

TEST_CASE("the boundary is taken from the content type") {
    const struct {
        const char* type;
        const char* boundary;
    } cases[] = {
        {"multipart/form-data; boundary=----x7", "----x7"},
        {"multipart/form-data; boundary=x ; charset=utf-8", "x"},
        {"multipart/form-data; boundary=\"a;b\"; c", "a;b"},
    };
    for (const auto& c : cases)
        CHECK(MultipartBoundary(c.type) == c.boundary);
    for (const char* type : {"multipart/form-data", "multipart/form-data; boundary=",
                             "multipart/form-data; boundary=\"\""})
        CHECK_THROWS_WITH_AS(MultipartBoundary(type), "POST Data no boundary", const char*);
}
