// FilePage.h: an answer that the browser saves as a file.
#pragma once

#include "cgiFramework/WebPage.h"

// A text, or a file of this machine. It writes no cookies.
//
// In the content two per-cent signs stand for one, and everything else, a single per-cent sign too,
// for itself: who builds content doubles its per-cent signs.
class FilePage : public WebItem {
  public:
    UString contentType;
    UString header;       // header lines in front of this page's own; empty, or each with its "\n"
    UString fname;        // the file; below "/Norvane" and its like it is looked for in the root
    UString displayName;  // what the browser calls the file; empty: `fname`
    UString stringContent;  // instead of the file, when it is not empty

    FilePage() : contentType("text/plain;charset=utf-8") {}
    void SetContentType(const char* type) { contentType = type; }
    void SetDisplayName(const char* name) { displayName = name; }
    void SetFileName(const char* path) { fname = path; }
    void SetStringContent(const char* text) { stringContent = text; }

    // A file that is missing, cannot be read or is no regular file gives the header lines alone.
    void Render(WebContext& ctx, WebRender* out) override;

  protected:
    // What comes behind the header lines; a page with content of its own writes that, byte by byte.
    virtual void RenderContent(WebRender& out);
};
