#include "portal/theme/StandardPage.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "portal/context/PortalContext.h"

namespace {

constexpr char kNoSettings[] = "/nonexistent/Lumora.cfg";
constexpr char kHostile[] = "<i title=\"x\">O'Dell & Co";

// A request by `user`; the answer is collected as text.
class Request {
  public:
    explicit Request(const char* user) {
        setenv("SCRIPT_NAME", "/lumora/lumora.cgi", 1);
        setenv("REMOTE_USER", user, 1);
        for (const char* name : {"QUERY_STRING", "CONTENT_LENGTH", "CONTENT_TYPE", "HTTP_COOKIE"})
            unsetenv(name);
    }
    ~Request() { unsetenv("REMOTE_USER"); }
    std::string Answer(WebContext& ctx, WebPage& page) {
        UStringWebRender out;
        page.Render(ctx, &out);
        return out.output.c_str();
    }
};

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST_CASE("the frame escapes every name that it shows") {
    Request request(kHostile);
    PortalContext ctx(kNoSettings, nullptr);
    ctx.customerName = kHostile;
    ctx.zoneName = kHostile;
    ctx.menu = {{kHostile, "queue.list&x=\"><i>", true}};
    StandardPage page(ctx, /*addToHistory=*/false);
    page.title = kHostile;

    const std::string answer = request.Answer(ctx, page);
    CHECK_FALSE(Contains(answer, "<i"));
    CHECK(Contains(answer, "<title>&lt;i title=\"x\"&gt;O'Dell &amp; Co - Lumora</title>"));
    CHECK(Contains(answer,
                   "aria-current=\"page\" href=\"/lumora/lumora.cgi?pagename=queue.list&amp;"
                   "x=&quot;&gt;&lt;i&gt;\""));

    const std::unique_ptr<ThemePage> message(MessagePage(ctx, "Refused", kHostile));
    CHECK_FALSE(Contains(request.Answer(ctx, *message), "<i"));
    CHECK(ctx.cookies.empty());  // nothing went to the history
}

TEST_CASE("a page's own parts stand in the document in order, behind one block of headers") {
    Request request("alice");
    PortalContext ctx(kNoSettings, nullptr);
    ctx.client_redirect = "?a=1&b=2";
    ctx.zoneName = "Europe/Rome";
    StandardPage page(ctx, /*addToHistory=*/false);
    page.title = "Queues";
    page.header = "<!--header-->";
    page.css = "<!--css-->";
    page.PageAttributes = "class=\"wide\"";
    page.Adopt(new WebValue("<!--item-->"));

    const std::string answer = request.Answer(ctx, page);
    const char* const parts[] = {"Content-Security-Policy: ",
                                 "Content-type: text/html;charset=utf-8\n\n<!DOCTYPE html>\n",
                                 "css/lumora.css",
                                 "<title>Queues",
                                 "<!--header-->",
                                 "0;url= ?a=1&amp;b=2",
                                 "<!--css--></head>",
                                 "<body class=\"wide\">",
                                 "<header",
                                 "alice",
                                 "<h1>Queues</h1>",
                                 "<!--item--></main>",
                                 "Days and times: Europe/Rome",
                                 "</body>\n</html>\n"};
    size_t at = 0;
    for (const char* part : parts) {
        CAPTURE(part);
        at = answer.find(part, at);
        REQUIRE(at != std::string::npos);
    }
}

TEST_CASE("the frame needs no portal context") {
    Request request("alice");
    WebContext ctx(kNoSettings, nullptr);
    StandardPage page(ctx, /*addToHistory=*/false);
    const std::string answer = request.Answer(ctx, page);
    CHECK(Contains(answer, "<title>Lumora</title>"));
    for (const char* part : {"<nav", "alice", "<h1>", "Days and times", "class=\"notice\""}) {
        CAPTURE(part);
        CHECK_FALSE(Contains(answer, part));
    }
}

TEST_CASE("a user is told that the portal does not know them, or that their session has ended") {
    const struct {
        const char* what;
        const char* user;
        int contactId;
        bool showIdentityNotice;
        bool told;
    } cases[] = {
        {"signed in, not found", "alice", 0, true, true},
        {"found", "alice", 7, true, false},
        {"not signed in", "", 0, true, false},
        {"could not be looked up", "alice", 0, false, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Request request(c.user);
        PortalContext ctx(kNoSettings, nullptr);
        ctx.authenticated = true;
        ctx.contactId = c.contactId;
        StandardPage page(ctx, /*addToHistory=*/false);
        page.showIdentityNotice = c.showIdentityNotice;
        CHECK(Contains(request.Answer(ctx, page), "is not known to this portal") == c.told);
        CHECK_FALSE(Contains(request.Answer(ctx, page), "Your session has ended"));
        ctx.SetWebArgument("invalidSessionId", "123");
        CHECK(Contains(request.Answer(ctx, page), "Your session has ended"));
    }
}
