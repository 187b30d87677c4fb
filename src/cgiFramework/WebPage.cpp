#include "cgiFramework/WebPage.h"

#include "common/Html.h"

namespace {

constexpr int kHistorySlots = 5;
const char* const kSlotNames[kHistorySlots] = {"_page0", "_page1", "_page2", "_page3", "_page4"};

// The history lives in the session, or in cookies where the program keeps no sessions.
UString GetSlot(WebContext& ctx, int slot) {
    if (!ctx.session_prefix.IsEmpty())
        return UString(ctx.GetWebSessionVar(kSlotNames[slot])->Text());
    return UString(ctx.GetWebCookie(kSlotNames[slot])->value);
}

void SetSlot(WebContext& ctx, int slot, const char* url) {
    if (!ctx.session_prefix.IsEmpty())
        ctx.SetWebSessionVar(kSlotNames[slot], url);
    else
        ctx.SetWebCookie(kSlotNames[slot], url);
}

// Header lines end at line breaks: whatever a name or value holds, it stays in its line.
UString HeaderText(const UString& text) {
    UString clean;
    for (const char* p = text.c_str(); *p != '\0'; ++p) {
        if (*p != '\r' && *p != '\n') clean += *p;
    }
    return clean;
}

void RenderElement(WebItem& item, const char* open, const UString& css, const char* close,
                   WebContext& ctx, WebRender* out) {
    out->printf("<%s %s>", open, css.c_str());
    item.WebItem::Render(ctx, out);
    out->Write(close);
}

}  // namespace

void WebItem::RenderChildren(WebContext& ctx, WebRender* out) {
    for (WebItem& child : contains)
        child.Render(ctx, out);
}

void WebItem::Render(WebContext& ctx, WebRender* out) {
    RenderChildren(ctx, out);
}

void WebItem::Add(WebItem* child) {
    contains.Append(child);
}

void WebItem::Insert(WebItem* child) {
    contains.Prepend(child);
}

bool WebItem::Match(const char*) {
    return false;
}

WebItem* WebItem::Find(const char* name) {
    if (Match(name)) return this;
    for (WebItem& child : contains) {
        if (WebItem* found = child.Find(name)) return found;
    }
    return nullptr;
}

WebPage::WebPage(bool addToHistory_) : addToHistory(addToHistory_) {}

void WebPage::UpdateHistory(WebContext& ctx) {
    if (ctx.client_redirect == "<back>") {
        for (int slot = 0; slot + 1 < kHistorySlots; ++slot)
            SetSlot(ctx, slot, GetSlot(ctx, slot + 1).c_str());
        SetSlot(ctx, kHistorySlots - 1, "");
        return;
    }
    if (!ctx.client_redirect.IsEmpty() || !addToHistory) return;
    // Reading the slot comes first: it opens the session whose id the URL below must carry.
    const UString current = GetSlot(ctx, 0);
    if (!ctx.IsSameArgument("pagename", current.c_str())) {
        for (int slot = kHistorySlots - 1; slot > 0; --slot)
            SetSlot(ctx, slot, GetSlot(ctx, slot - 1).c_str());
    }
    SetSlot(ctx, 0, ctx.GetFullURL(nullptr));
}

void WebPage::RenderCookies(WebContext& ctx, WebRender* out) {
    for (const WebCookie& cookie : ctx.cookies) {
        if (!cookie.updated) continue;
        out->printf("Set-Cookie: %s=%s; ", HeaderText(cookie.name).c_str(),
                    HeaderText(cookie.value).c_str());
        if (!cookie.expires.IsEmpty())
            out->printf("expires=%s; ", HeaderText(cookie.expires).c_str());
        if (!cookie.path.IsEmpty()) out->printf("path=%s; ", HeaderText(cookie.path).c_str());
        if (!cookie.domain.IsEmpty()) out->printf("domain=%s; ", HeaderText(cookie.domain).c_str());
        if (!cookie.secure.IsEmpty()) out->printf("%s; ", HeaderText(cookie.secure).c_str());
        out->Write("\n");
    }
}

void WebPage::RenderHeaders(WebContext&, WebRender* out) {
    out->Write(
        "Cache-Control: no-cache, no-store, max-age=1, must-revalidate\n"
        "Content-type: text/html;charset=utf-8\n\n");
}

void WebPage::RenderRefresh(WebContext& ctx, WebRender* out) {
    if (ctx.client_redirect == "<back>") {
        UString url = GetSlot(ctx, 0);
        if (url.IsEmpty()) url = ctx.GetURL("pagename=");
        out->printf("<meta http-equiv=refresh content=\"0;url= %s\" />\n",
                    HtmlAttr(url.c_str()).c_str());
    } else if (!ctx.client_redirect.IsEmpty() && ctx.client_redirect != "<ignore>") {
        out->printf("<meta http-equiv=refresh content=\"%d;url= %s\" />\n",
                    ctx.client_redirect_time, HtmlAttr(ctx.client_redirect.c_str()).c_str());
    }
}

void WebPage::RenderDocument(WebContext& ctx, WebRender* out, bool withRefresh) {
    out->printf("<html>\n<head>\n<title>%s</title>\n", title.c_str());
    out->Write(header.c_str());
    if (withRefresh) RenderRefresh(ctx, out);
    out->printf("%s</head>\n<body %s>\n", css.c_str(), PageAttributes.c_str());
    RenderChildren(ctx, out);
    out->Write("</body>\n</html>\n");
}

void WebPage::Render(WebContext& ctx, WebRender* out) {
    UpdateHistory(ctx);
    RenderCookies(ctx, out);
    RenderHeaders(ctx, out);
    RenderDocument(ctx, out, /*withRefresh=*/true);
}

void WebEmbedPage::Render(WebContext& ctx, WebRender* out) {
    RenderDocument(ctx, out, /*withRefresh=*/false);
}

void AjaxPage::Render(WebContext& ctx, WebRender* out) {
    out->Write("Content-type: text/html;charset=utf-8\n\n");
    RenderChildren(ctx, out);
}

WebDiv::WebDiv(const char* fmt, ...) {
    if (fmt == nullptr) return;
    va_list args;
    va_start(args, fmt);
    css.vFormat(fmt, args);
    va_end(args);
}

void WebDiv::Render(WebContext& ctx, WebRender* out) {
    RenderElement(*this, "div", css, "</div>", ctx, out);
}

void WebTable::AddHeader(WebItem* item) {
    headers.Append(item);
}

WebItem* WebTable::Find(const char* name) {
    for (WebItem& item : headers) {
        if (WebItem* found = item.Find(name)) return found;
    }
    return WebItem::Find(name);
}

void WebTable::GiveUpChildren(OSListBase& to) {
    to.Splice(headers);
    WebItem::GiveUpChildren(to);
}

void WebTable::Render(WebContext& ctx, WebRender* out) {
    out->printf("<table %s>\n", css.c_str());
    if (headers.empty()) {
        RenderChildren(ctx, out);
    } else {
        out->Write("<thead>\n");
        for (WebItem& item : headers)
            item.Render(ctx, out);
        out->Write("</thead>\n<tbody>\n");
        RenderChildren(ctx, out);
        out->Write("</tbody>\n");
    }
    out->Write("</table>\n");
}

void WebRow::Render(WebContext& ctx, WebRender* out) {
    RenderElement(*this, "tr", css, "</tr>\n", ctx, out);
}

void WebCell::Render(WebContext& ctx, WebRender* out) {
    RenderElement(*this, "td", css, "</td>", ctx, out);
}

void WebCellHeader::Render(WebContext& ctx, WebRender* out) {
    RenderElement(*this, "th", css, "</th>", ctx, out);
}

void WebList::Render(WebContext& ctx, WebRender* out) {
    const char* element = ordered ? "ol" : "ul";
    out->printf("<%s %s>\n", element, css.c_str());
    RenderChildren(ctx, out);
    out->printf("</%s>\n", element);
}

void WebListItem::Render(WebContext& ctx, WebRender* out) {
    RenderElement(*this, "li", css, "</li>\n", ctx, out);
}

void WebLink::Render(WebContext& ctx, WebRender* out) {
    RenderElement(*this, "a", href, "</a>", ctx, out);
}

WebValue::WebValue(const char* fmt, ...) {
    if (fmt == nullptr) return;
    va_list args;
    va_start(args, fmt);
    value.vFormat(fmt, args);
    va_end(args);
}

void WebValue::Render(WebContext& ctx, WebRender* out) {
    out->Write(value.c_str());
    RenderChildren(ctx, out);
}
