// The browser's cookies, read, assigned and written back as header lines.
#include <algorithm>

#include "cgiFramework/JSONPage.h"
#include "fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = TextOf(data, size);
    setenv("HTTP_COOKIE", text.c_str(), 1);
    WebContext ctx("/nowhere", nullptr);
    for (WebCookie& cookie : ctx.cookies) {
        Require(ctx.HasWebCookie(cookie.name), "cookies are found by their names");
        cookie = cookie.value.c_str();
        cookie.path = text.c_str();
    }
    ctx.SetWebCookie("all", text.c_str());
    ctx.GetWebCookie("all")->SetExpires(60);

    JSONPage page(/*asHtml=*/false);
    page.header = "";
    UStringWebRender out;
    page.Render(ctx, &out);
    const std::string lines = out.output.c_str();
    const size_t breaks = static_cast<size_t>(std::count(lines.begin(), lines.end(), '\n'));
    // One more stands in the document, which is "{\n}".
    Require(breaks == ctx.cookies.size() + 1, "each cookie is one header line");
    Require(lines.find('\r') == std::string::npos, "header lines hold no carriage return");
    return 0;
}
