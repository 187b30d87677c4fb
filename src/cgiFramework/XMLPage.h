// XMLPage.h: XML answers.
#pragma once

#include "cgiFramework/WebPage.h"

// The document. It writes no cookies, so a session that it starts must travel in its URL.
class XMLPage : public WebItem {
  public:
    UString header;  // the HTTP header block; empty: none is written

    XMLPage();
    void Render(WebContext& ctx, WebRender* out) override;
};

// An element. Name, attributes and value are escaped when they are written, all alike: & < and >,
// but no quotes, since the attribute text holds those of its values. What goes between them must
// hold none of its own.
class XMLItem : public WebItem {
  public:
    UString name;
    UString tags;  // attribute text, for instance id="4" type="1"
    UString svalue;

    // A null format gives no attributes, a null value an empty one.
    XMLItem(const char* name, const char* value, const char* tagsFormat, ...)
        __attribute__((format(printf, 4, 5)));
    XMLItem(const char* name, int value, const char* tagsFormat, ...)
        __attribute__((format(printf, 4, 5)));
    void SetTags(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void Set(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void Set(int value);

    operator const char*() const { return svalue.c_str(); }
    // The value as a decimal number; 0 when it is none.
    explicit operator int() const;
    explicit operator bool() const { return static_cast<int>(*this) != 0; }

    bool Match(const char* key) override { return name == key; }
    void Render(WebContext& ctx, WebRender* out) override;
    // The text as it stands in a document: & < > escaped, what no document may hold (control bytes
    // other than tab and line ends, bytes that are no UTF-8) as a blank.
    static UString Parse(const char* text);
};
