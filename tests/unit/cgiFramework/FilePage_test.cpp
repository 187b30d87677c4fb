#include "cgiFramework/FilePage.h"

#include <doctest/doctest.h>
#include <sys/stat.h>

#include <string>

#include "unit/cgiFramework/TestRequest.h"

namespace {

// Counts the writes behind the header block's last line.
class CountingRender : public UStringWebRender {
  public:
    void Write(std::string_view text) override {
        ++writes;
        bytes.append(text);
    }
    int writes = 0;
    std::string bytes;
};

struct Answer {
    std::string text;
    int writes;
};

Answer Rendered(FilePage& page) {
    WebContext ctx(nullptr, nullptr);
    CountingRender out;
    page.Render(ctx, &out);
    return {out.bytes, out.writes};
}

std::string Headers(const std::string& type, const std::string& name) {
    return "Content-type: " + type + " name=\"" + name +
           "\"\nContent-Disposition: attachment; filename=\"" + name + "\"\n\n";
}

}  // namespace

TEST_CASE("a text is offered under its display name, its per-cent signs halved, in one write") {
    TestRequest request;
    FilePage page;
    page.SetContentType("text/csv");
    page.SetFileName("/Norvane/unused");
    page.SetDisplayName("Calls by day.csv");
    page.SetStringContent("50%%,%s,%n,%%%,5%\n");
    const Answer answer = Rendered(page);
    CHECK(answer.text == Headers("text/csv", "Calls by day.csv") + "50%,%s,%n,%%,5%\n");
    CHECK(answer.writes == 3);  // headers, blank line, content
}

TEST_CASE("a file comes whole, from below the root") {
    TestRequest request;
    const std::string content = std::string("a\0b%%", 5) + std::string(100'000, 'x') + "\nend";
    request.Write("Norvane/chart", content);
    FilePage page;
    page.SetFileName("/Norvane/chart");
    const std::string expected = Headers("text/plain;charset=utf-8", "/Norvane/chart") +
                                 std::string("a\0b%", 4) + content.substr(5);
    const Answer answer = Rendered(page);
    CHECK(answer.text == expected);
    CHECK(answer.writes == 3);
}

TEST_CASE("no name reaches out of its header line") {
    TestRequest request;
    FilePage page;
    page.SetDisplayName("a\r\nSet-Cookie: x=\"1\"\x7F.csv");
    page.SetContentType("text/csv\r\nX: y");
    CHECK(Rendered(page).text == Headers("text/csvX: y", "aSet-Cookie: x=1.csv"));
}

TEST_CASE("what is no readable regular file gives the headers alone") {
    TestRequest request;
    mkfifo((request.root / "Norvane/fifo").c_str(), 0600);
    for (const char* path : {"/Norvane/missing", "/Norvane", "/Norvane/fifo", "/dev/zero"}) {
        CAPTURE(path);
        FilePage page;
        page.SetFileName(path);
        CHECK(Rendered(page).text == Headers("text/plain;charset=utf-8", path));
    }
}
