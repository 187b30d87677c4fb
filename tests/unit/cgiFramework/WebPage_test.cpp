#include "cgiFramework/WebPage.h"

#include <doctest/doctest.h>

#include "cgiFramework/WebForm.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

constexpr char kConfig[] = "/Norvane/config/Lumora.cfg";

std::string Rendered(WebContext& ctx, WebItem& item) {
    UStringWebRender out;
    item.Render(ctx, &out);
    return out.output.c_str();
}

std::unique_ptr<WebItem> WithText(WebItem* item) {
    item->Add(new WebValue("%s", "x"));
    return std::unique_ptr<WebItem>(item);
}

}  // namespace

TEST_CASE("items render their element to the byte") {
    TestRequest request;
    WebContext ctx(kConfig, nullptr);
    const struct {
        std::unique_ptr<WebItem> item;
        const char* expected;
    } cases[] = {
        {WithText(new WebDiv("id=%d", 5)), "<div id=5>x</div>"},
        {WithText(new WebDiv(nullptr)), "<div >x</div>"},
        {WithText(new WebTable("class=t")), "<table class=t>\nx</table>\n"},
        {WithText(new WebRow("")), "<tr >x</tr>\n"},
        {WithText(new WebCell("a")), "<td a>x</td>"},
        {WithText(new WebCellHeader("a")), "<th a>x</th>"},
        {WithText(new WebList("a", true)), "<ol a>\nx</ol>\n"},
        {WithText(new WebList("a", false)), "<ul a>\nx</ul>\n"},
        {WithText(new WebListItem("a")), "<li a>x</li>\n"},
        {WithText(new WebLink("href=\"u\"")), "<a href=\"u\">x</a>"},
        {WithText(new WebDropDownList("n", "c")), "<select name=\"n\" c>\nx</select>\n"},
        {WithText(new WebDropDownListItem(true, "v", "t")),
         "<option selected value=\"v\">tx</option>\n"},
        {WithText(new WebDropDownListItem(false, "", "t")), "<option  >tx</option>\n"},
        {std::make_unique<WebField>("n", "text", "", "c"), "<input type=text name=\"n\" c>\n"},
        {std::make_unique<WebField>("n", "text", "v", "c"),
         "<input type=text name=\"n\" value=\"v\" c>\n"},
        {std::make_unique<WebField>("n", "textarea", "v", "c"),
         "<textarea name=\"n\" c >v</textarea>"},
        {std::make_unique<WebCheckBoxField>("n", "1", "c", false),
         "<input type=\"checkbox\" name=\"n\" checked c >\n"},
        {std::make_unique<WebCheckBoxField>("n", "on", "c", true),
         "<input type=\"checkbox\" name=\"n\"  c onclick=\"return false;\">\n"},
    };
    for (const auto& c : cases)
        CHECK(Rendered(ctx, *c.item) == c.expected);

    WebTable table("");
    table.AddHeader(new WebValue("h"));
    table.Add(new WebValue("r"));
    CHECK(Rendered(ctx, table) == "<table >\n<thead>\nh</thead>\n<tbody>\nr</tbody>\n</table>\n");
}

TEST_CASE("a form carries the page and the session, escaped, once") {
    TestRequest request;
    request.Set("QUERY_STRING", "pagename=a%22%3Cb&sessionId=7&x=1");
    WebContext ctx(kConfig, nullptr);
    ctx["pagename"].type_ = WebArgument::Global;
    WebForm form("f", "post", "u", "c");
    form.Add(new WebField("sessionId", "hidden", "mine", ""));
    const char expected[] =
        "<form name=\"f\" method=\"post\" action=\"u\" c>\n"
        "<input type=hidden name=\"sessionId\" value=\"mine\" >\n"
        "<input type=hidden name=\"pagename\" value=\"a&quot;&lt;b\" >\n"
        "<input type=hidden name=\"nodefaults\" value=\"nodefaults\" >\n</form>\n";
    CHECK(Rendered(ctx, form) == expected);
    CHECK(Rendered(ctx, form) == expected);

    form.doGlobals = false;
    form.Globals(ctx, "x missing");
    const std::string text = Rendered(ctx, form);
    CHECK(text.find("name=\"x\" value=\"1\"") != std::string::npos);
    CHECK(text.find("missing") == std::string::npos);
    CHECK(text.find("pagename") == std::string::npos);
}

TEST_CASE("a page writes headers, refresh and document to the byte") {
    TestRequest request;
    WebContext ctx(kConfig, nullptr);
    ctx.SetWebCookie("c", "v");
    ctx.GetWebCookie("c")->path = "/";
    ctx.client_redirect = "u?a=1&b=\"";
    ctx.client_redirect_time = 3;
    WebPage page;
    page.title = "T";
    page.header = "<h>";
    page.css = "<css>\n";
    page.PageAttributes = "id=b";
    page.Add(new WebValue("x"));
    CHECK(Rendered(ctx, page) ==
          "Set-Cookie: c=v; path=/; \n"
          "Cache-Control: no-cache, no-store, max-age=1, must-revalidate\n"
          "Content-type: text/html;charset=utf-8\n\n"
          "<html>\n<head>\n<title>T</title>\n<h>"
          "<meta http-equiv=refresh content=\"3;url= u?a=1&amp;b=&quot;\" />\n"
          "<css>\n</head>\n<body id=b>\nx</body>\n</html>\n");
    ctx.client_redirect = "<ignore>";
    CHECK(Rendered(ctx, page).find("refresh") == std::string::npos);
}

TEST_CASE("the history keeps five pages and gives the latest one back") {
    TestRequest request;
    WebContext ctx(kConfig, nullptr);
    ctx.InitSession("Lumora", 0, /*inUrl=*/true);
    const auto visit = [&ctx](const char* pagename, const char* redirect) {
        ctx.SetWebArgument("pagename", pagename);
        ctx.client_redirect = redirect;
        WebPage page;
        return Rendered(ctx, page);
    };
    const auto slot = [&ctx](int i) {
        const std::string url = ctx.GetWebSessionVar(("_page" + std::to_string(i)).c_str())->Text();
        const size_t at = url.find("pagename=");
        return at == std::string::npos ? url : url.substr(at + 9);
    };
    for (const char* name : {"a", "b", "b", "c", "d", "e", "f"})
        visit(name, "");
    CHECK(slot(0) == "f");
    CHECK(slot(1) == "e");
    CHECK(slot(4) == "b");
    const std::string back = visit("x", "<back>");
    CHECK(back.find("pagename=e\" />") != std::string::npos);
    CHECK(slot(0) == "e");
    CHECK(slot(4).empty());
    visit("y", "elsewhere");
    CHECK(slot(0) == "e");
}

TEST_CASE("going back without a history leads to the start page") {
    TestRequest request;
    WebContext ctx(kConfig, nullptr);
    ctx.InitSession("Lumora", 0, /*inUrl=*/true);
    ctx.GetWebSessionVar("x");
    ctx.client_redirect = "<back>";
    WebPage page;
    const std::string url =
        "/lumora/lumora.cgi?sessionId=" + std::string(ctx.GetWebSessionId()) + "&amp;pagename=";
    CHECK(Rendered(ctx, page).find("content=\"0;url= " + url + "\" />") != std::string::npos);
}

TEST_CASE("fields are found in rows and headers, and a borrowed item outlives its parent") {
    WebItem borrowed;
    borrowed.destroy = false;
    {
        WebTable table("");
        table.AddHeader(new WebField("h", "text", "", ""));
        WebRow& row = table.Adopt(new WebRow(""));
        row.Adopt(new WebCell("")).Add(new WebField("f", "text", "", ""));
        row.Add(&borrowed);
        CHECK(table.Find("h") != nullptr);
        CHECK(table.Find("f") != nullptr);
        CHECK(table.Find("g") == nullptr);
    }
    CHECK(borrowed.list() == nullptr);
}

TEST_CASE("a tree of a million levels is freed without recursion") {
    auto root = std::make_unique<WebItem>();
    WebItem* at = root.get();
    for (int i = 0; i < 1000000; ++i)
        at = &at->Adopt(new WebItem);
    root.reset();
    CHECK(root == nullptr);
}
