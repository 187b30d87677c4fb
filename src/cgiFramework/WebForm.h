// WebForm.h: forms and their fields.
#pragma once

#include "cgiFramework/WebPage.h"

// A form. Posting it keeps the page name and the session: hidden copies of the Global and Context
// arguments are rendered with it (unless `doGlobals` is false), and a field "nodefaults" that tells
// a posted form from a first visit.
class WebForm : public WebItem {
  public:
    UString name;
    UString method;
    UString action;
    UString css;
    bool doGlobals = true;

    WebForm(const char* name_, const char* method_, const char* action_, const char* css_)
        : name(name_), method(method_), action(action_), css(css_) {}
    // Adds hidden copies of the existing arguments named in `names`, separated by blanks.
    void Globals(WebContext& ctx, const char* names);
    void Render(WebContext& ctx, WebRender* out) override;
};

// An input, or a textarea when the type is "textarea". `value` is attribute text (textarea:
// content).
class WebField : public WebItem {
  public:
    UString name;
    UString type_;
    UString value;
    UString css;
    WebField(const char* name_, const char* type, const char* value_, const char* css_)
        : name(name_), type_(type), value(value_), css(css_) {}
    bool Match(const char* key) override { return name == key; }
    void Render(WebContext& ctx, WebRender* out) override;
};

// A check box, ticked when the value reads as a number other than 0.
class WebCheckBoxField : public WebField {
  public:
    bool readOnly;
    WebCheckBoxField(const char* name_, const char* value_, const char* css_, bool readOnly_)
        : WebField(name_, "checkbox", value_, css_), readOnly(readOnly_) {}
    void Render(WebContext& ctx, WebRender* out) override;
};

class WebDropDownList : public WebItem {
  public:
    UString name;
    UString css;
    WebDropDownList(const char* name_, const char* css_) : name(name_), css(css_) {}
    bool Match(const char* key) override { return name == key; }
    void Render(WebContext& ctx, WebRender* out) override;
};

// A choice; an empty value writes no value attribute, so the browser submits the text.
class WebDropDownListItem : public WebItem {
  public:
    bool selected;
    UString value;
    UString text;
    WebDropDownListItem(bool selected_, const char* value_, const char* text_)
        : selected(selected_), value(value_), text(text_) {}
    void Render(WebContext& ctx, WebRender* out) override;
};
