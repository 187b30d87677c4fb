// StandardPage.h: the themed frame that every page of the portal stands in.
#pragma once

#include <string>

#include "cgiFramework/WebPage.h"

class PortalContext;

// The portal's own HTML document: doctype, language, viewport, style sheet, header, menu, main part
// and footer. It needs neither database nor directory, so error pages use it too. History, cookies,
// headers and refresh are WebPage's. `title` is plain text here, escaped where it is shown: as the
// document's title and as the heading of the main part. `header` and `css` stand in the head as
// they are, the page's `css` behind the portal's own style sheet.
class ThemePage : public WebPage {
  public:
    // Whether a user whom the portal does not know is told so. To be cleared where the user could
    // not be looked up at all.
    bool showIdentityNotice = true;

    explicit ThemePage(WebContext& ctx, bool addToHistory = true);
    void Render(WebContext& ctx, WebRender* out) override;

  protected:
    // WebPage's lines, and those that tell the browser what a page of the portal may load.
    void RenderHeaders(WebContext& ctx, WebRender* out) override;
    // What stands between the body's tags, frame included.
    virtual void RenderBody(WebContext& ctx, WebRender* out);
    // The frame's parts above and below the page's items.
    virtual void RenderFrameTop(WebContext& ctx, WebRender* out);
    virtual void RenderFrameBottom(WebContext& ctx, WebRender* out);

    // The context as the portal's, or null when it is a bare one (the settings could not be read).
    PortalContext* portal() const { return portal_; }

  private:
    void AppendTopbar(WebContext& ctx, std::string& html) const;
    void AppendMenu(WebContext& ctx, std::string& html) const;
    void AppendNotices(const WebContext& ctx, std::string& html) const;
    bool IsUserUnknown() const;

    PortalContext* portal_;
};

// The page that most pages derive from: theme, customer's name, user and menu.
class StandardPage : public ThemePage {
  public:
    // A bare WebContext gives the frame without menu, user and customer.
    explicit StandardPage(WebContext& ctx, bool addToHistory = true);
};

// A page in the frame that holds one sentence: a refusal, an unknown page, an error. It stays out
// of the history. `text` is escaped here; the caller owns the page.
ThemePage* MessagePage(WebContext& ctx, const char* title, const char* text);
