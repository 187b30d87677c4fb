#include "portal/theme/StandardPage.h"

#include "common/Html.h"
#include "portal/context/PortalContext.h"

namespace {

// Inline styles are allowed because pages place some of their parts with them; scripts only come
// from files, but for the one handler of this hash: it asks before a quick report is removed.
constexpr char kSecurityHeaders[] =
    "Content-Security-Policy: default-src 'none'; script-src 'self' 'unsafe-hashes' "
    "'sha256-PfShXUFQHu2Y6oZcCN+JXoJXDL3jvXzdE1hVGvxH26A='; "
    "style-src 'self' 'unsafe-inline'; img-src 'self' data:; connect-src 'self'; "
    "form-action 'self'; base-uri 'none'; frame-ancestors 'self'\n"
    "X-Content-Type-Options: nosniff\n"
    "Referrer-Policy: same-origin\n";

constexpr char kHeadStart[] =
    "<!DOCTYPE html>\n"
    "<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    "<meta name=\"color-scheme\" content=\"light dark\">\n"
    "<link rel=\"icon\" type=\"image/svg+xml\" href=\"favicon.svg\">\n"
    "<link rel=\"stylesheet\" href=\"css/lumora.css\">\n<title>";

// The letter L with a light. Drawn in the document so that the header needs no further request;
// favicon.svg is the same drawing.
constexpr char kMark[] =
    "<svg class=\"mark\" viewBox=\"0 0 32 32\" width=\"28\" height=\"28\" aria-hidden=\"true\">"
    "<rect class=\"markGround\" width=\"32\" height=\"32\" rx=\"8\"/>"
    "<path class=\"markLetter\" d=\"M11 7v14a4 4 0 0 0 4 4h7\"/>"
    "<circle class=\"markLight\" cx=\"21.5\" cy=\"12\" r=\"4\"/></svg>";

void AppendLink(std::string& html, const char* attributes, const char* url) {
    html.append("<a ").append(attributes).append("href=\"").append(HtmlAttr(url).c_str());
    html += "\">";
}

void AppendText(std::string& html, const char* open, const char* text, const char* close) {
    html += open;
    AppendHtmlText(html, text);
    html += close;
}

}  // namespace

ThemePage::ThemePage(WebContext& ctx, bool addToHistory_)
    : WebPage(addToHistory_), portal_(dynamic_cast<PortalContext*>(&ctx)) {}

void ThemePage::RenderHeaders(WebContext& ctx, WebRender* out) {
    // First, since the base class closes the header block.
    out->Write(kSecurityHeaders);
    WebPage::RenderHeaders(ctx, out);
}

void ThemePage::Render(WebContext& ctx, WebRender* out) {
    UpdateHistory(ctx);
    RenderCookies(ctx, out);
    RenderHeaders(ctx, out);

    std::string html = kHeadStart;
    AppendHtmlText(html, title.c_str());
    html.append(title.IsEmpty() ? "Lumora</title>\n" : " - Lumora</title>\n");
    html += header.c_str();
    out->Write(html);
    RenderRefresh(ctx, out);

    html = css.c_str();
    html.append("</head>\n<body ").append(PageAttributes.c_str()).append(">\n");
    out->Write(html);
    RenderBody(ctx, out);
    out->Write("</body>\n</html>\n");
}

void ThemePage::RenderBody(WebContext& ctx, WebRender* out) {
    RenderFrameTop(ctx, out);
    RenderChildren(ctx, out);
    RenderFrameBottom(ctx, out);
}

void ThemePage::RenderFrameTop(WebContext& ctx, WebRender* out) {
    std::string html = "<a class=\"skipLink\" href=\"#content\">Skip to the page's content</a>\n";
    AppendTopbar(ctx, html);
    html += "<main id=\"content\" tabindex=\"-1\">\n";
    AppendNotices(ctx, html);
    if (!title.IsEmpty()) AppendText(html, "<h1>", title.c_str(), "</h1>\n");
    out->Write(html);
}

void ThemePage::RenderFrameBottom(WebContext&, WebRender* out) {
    std::string html = "</main>\n<footer class=\"pageFooter\"><span>Lumora</span>";
    if (portal_ != nullptr && !portal_->zoneName.IsEmpty())
        AppendText(html, "<span>Days and times: ", portal_->zoneName.c_str(), "</span>");
    html += "</footer>\n";
    out->Write(html);
}

void ThemePage::AppendTopbar(WebContext& ctx, std::string& html) const {
    html += "<header class=\"topbar\">\n";
    AppendLink(html, "class=\"brand\" ", ctx.GetURL("pagename=callreport"));
    html.append(kMark).append("<span>Lumora</span></a>\n");
    if (portal_ != nullptr) {
        if (!portal_->customerName.IsEmpty())
            AppendText(html, "<span class=\"customer\">", portal_->customerName.c_str(),
                       "</span>\n");
        AppendMenu(ctx, html);
        if (*portal_->UserName() != '\0')
            AppendText(html, "<span class=\"user\"><span class=\"srOnly\">Signed in as </span>",
                       portal_->UserName(), "</span>\n");
    }
    html += "</header>\n";
}

void ThemePage::AppendMenu(WebContext& ctx, std::string& html) const {
    if (portal_->menu.empty()) return;
    html += "<nav class=\"mainMenu\" aria-label=\"Main menu\">";
    for (const MenuEntry& entry : portal_->menu) {
        AppendLink(html, entry.current ? "aria-current=\"page\" " : "",
                   ctx.GetURL("pagename=%s", entry.pagename));
        AppendText(html, "", entry.caption, "</a>");
    }
    html += "</nav>\n";
}

void ThemePage::AppendNotices(const WebContext& ctx, std::string& html) const {
    if (showIdentityNotice && IsUserUnknown())
        html +=
            "<div class=\"notice\" role=\"status\">Your user name is not known to this portal. "
            "Please ask your administrator.</div>\n";
    if (ctx.FindWebArgument("invalidSessionId") != nullptr)
        html +=
            "<div class=\"notice\" role=\"status\">Your session has ended; a new one was "
            "started.</div>\n";
}

bool ThemePage::IsUserUnknown() const {
    return portal_ != nullptr && portal_->authenticated && portal_->contactId == 0 &&
           portal_->customerId == 0 && *portal_->UserName() != '\0';
}

StandardPage::StandardPage(WebContext& ctx, bool addToHistory_) : ThemePage(ctx, addToHistory_) {}

ThemePage* MessagePage(WebContext& ctx, const char* title, const char* text) {
    auto* page = new StandardPage(ctx, /*addToHistory=*/false);
    page->title = title;
    page->Adopt(
        new WebValue("<p class=\"errorText\" role=\"alert\">%s</p>\n", HtmlText(text).c_str()));
    return page;
}
