// WebPage.h: the page as a tree of items, and the documents at its root.
#pragma once

#include "cgiFramework/WebContext.h"
#include "cgiFramework/WebRender.h"
#include "common/UStringX.h"
#include "kernel/OSList.h"

// A node of the page. It owns its children. Values and attribute texts are pasted as they stand, so
// whoever builds the page escapes them (common/Html.h). Null texts read as empty.
class WebItem : public OSListObj {
  public:
    OSList<WebItem> contains;
    bool destroy = true;  // false: the parent only borrows this item

    bool IsKey(const char* key) override { return Match(key); }
    virtual void Render(WebContext& ctx, WebRender* out);
    // Both take ownership, unless the item's `destroy` is false.
    virtual void Add(WebItem* child);
    virtual void Insert(WebItem* child);
    virtual bool Match(const char* name);
    // The first item of the subtree that matches the name, or null. Fields match by their name.
    virtual WebItem* Find(const char* name);

    // Adds the child and returns it as what it is.
    template <class T>
    T& Adopt(T* child) {
        Add(child);
        return *child;
    }

    void GiveUpChildren(OSListBase& to) override { to.Splice(contains); }
    bool OwnedByList() const override { return destroy; }

  protected:
    void RenderChildren(WebContext& ctx, WebRender* out);
};

// The root of an HTML answer: headers, cookies, history, refresh and document.
class WebPage : public WebItem {
  public:
    UString title;
    UString header;
    UString css;
    UString PageAttributes;
    bool addToHistory;

    explicit WebPage(bool addToHistory = true);
    void Render(WebContext& ctx, WebRender* out) override;

  protected:
    // Keeps the five latest pages of the browser in "_page0" (now) to "_page4".
    void UpdateHistory(WebContext& ctx);
    void RenderCookies(WebContext& ctx, WebRender* out);
    virtual void RenderHeaders(WebContext& ctx, WebRender* out);
    void RenderRefresh(WebContext& ctx, WebRender* out);
    void RenderDocument(WebContext& ctx, WebRender* out, bool withRefresh);
};

// The document without headers, cookies or history.
class WebEmbedPage : public WebPage {
  public:
    using WebPage::WebPage;
    void Render(WebContext& ctx, WebRender* out) override;
};

// A content-type line and the children.
class AjaxPage : public WebPage {
  public:
    using WebPage::WebPage;
    void Render(WebContext& ctx, WebRender* out) override;
};

class WebDiv : public WebItem {
  public:
    UString css;
    explicit WebDiv(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void Render(WebContext& ctx, WebRender* out) override;
};

class WebTable : public WebItem {
  public:
    OSList<WebItem> headers;
    UString css;
    explicit WebTable(const char* css_) : css(css_) {}
    void AddHeader(WebItem* item);
    void Render(WebContext& ctx, WebRender* out) override;
    WebItem* Find(const char* name) override;
    void GiveUpChildren(OSListBase& to) override;
};

class WebRow : public WebItem {
  public:
    UString css;
    explicit WebRow(const char* css_) : css(css_) {}
    void Render(WebContext& ctx, WebRender* out) override;
};

class WebCell : public WebItem {
  public:
    UString css;
    explicit WebCell(const char* css_) : css(css_) {}
    void Render(WebContext& ctx, WebRender* out) override;
};

class WebCellHeader : public WebItem {
  public:
    UString css;
    explicit WebCellHeader(const char* css_) : css(css_) {}
    void Render(WebContext& ctx, WebRender* out) override;
};

class WebList : public WebItem {
  public:
    UString css;
    bool ordered;
    WebList(const char* css_, bool ordered_) : css(css_), ordered(ordered_) {}
    void Render(WebContext& ctx, WebRender* out) override;
};

class WebListItem : public WebItem {
  public:
    UString css;
    explicit WebListItem(const char* css_) : css(css_) {}
    void Render(WebContext& ctx, WebRender* out) override;
};

// `href` is the whole attribute text, for instance href="..." class="...".
class WebLink : public WebItem {
  public:
    UString href;
    explicit WebLink(const char* href_) : href(href_) {}
    void Render(WebContext& ctx, WebRender* out) override;
};

// Text; the format is ours, what it formats must be escaped for where it lands.
class WebValue : public WebItem {
  public:
    UString value;
    explicit WebValue(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void Render(WebContext& ctx, WebRender* out) override;
};
