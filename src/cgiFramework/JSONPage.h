// JSONPage.h: JSON answers, built from items as HTML pages are, and texts read back into items.
#pragma once

#include "cgiFramework/WebPage.h"

// The document. Children, mostly pairs, stand between braces, unless `no_top_obj` is set: then the
// one child is the document. `header` is the HTTP header block.
class JSONPage : public WebPage {
  public:
    bool no_top_obj = false;

    // `asHtml` announces the text as HTML, for a form that posts into a frame.
    explicit JSONPage(bool asHtml);
    void Render(WebContext& ctx, WebRender* out) override;
};

// A part of a document.
class JSONItem : public WebItem {
  public:
    enum { kArray = 1, kPair = 2, kValue = 3, kObject = 4 };

    const int JSONtypeID;
    UString name;
    UString value;

    bool isJSONArray() const { return JSONtypeID == kArray; }
    bool isJSONPair() const { return JSONtypeID == kPair; }
    bool isJSONValue() const { return JSONtypeID == kValue; }
    bool isJSONObject() const { return JSONtypeID == kObject; }

    // The element at that position, counted from 0 (of a pair: its value); null when there is none.
    JSONItem* GetElement(int index) const;
    // The first pair of that name among the elements, or null. Names are compared as written.
    JSONItem* GetElement(const char* pairName) const;
    UString toString(WebContext& ctx);
    // A copy of this item and the JSON items in it, for the caller to own.
    virtual JSONItem* copy() const = 0;

  protected:
    explicit JSONItem(int kind) : JSONtypeID(kind) {}
    virtual const OSList<WebItem>& Elements() const { return contains; }
    void CopyElements(JSONItem& to) const;
};

// A string, or, when raw, a number or one of the words true, false and null.
class JSONValue : public JSONItem {
  public:
    int type;  // 0 quoted, 1 raw

    // `value` becomes the text escaped, whether raw or not. Escapes that the text brings along (\n
    // \r \t \" and \\) stay as they are. A carriage return stays a raw byte: readers of the
    // documents rely on it.
    JSONValue(const UString& text, bool raw);
    void Render(WebContext& ctx, WebRender* out) override;
    JSONItem* copy() const override;
};

// A name, written as it stands, and a value.
class JSONPair : public JSONItem {
  public:
    OSList<WebItem> li;  // the value; only the first item is written

    JSONPair(const UString& name, const UString& value, bool raw);
    // Takes the object or array.
    JSONPair(const UString& name, WebItem* item);
    void Add(WebItem* child) override { li.Append(child); }
    void Insert(WebItem* child) override { li.Prepend(child); }
    void Render(WebContext& ctx, WebRender* out) override;
    JSONItem* copy() const override;
    void GiveUpChildren(OSListBase& to) override;

  protected:
    const OSList<WebItem>& Elements() const override { return li; }
};

class JSONObject : public JSONItem {
  public:
    JSONObject() : JSONItem(kObject) {}
    // See JSONParse.
    explicit JSONObject(const UString& text);
    void Render(WebContext& ctx, WebRender* out) override;
    JSONItem* copy() const override;

    // Adds the members of the object that the text holds. Names and strings keep their escapes, so
    // that rendering gives the same document again. Throws a text that names what does not match:
    // braces, brackets or double quotes. Before the text is read, these are counted wherever they
    // stand, so that a string holding a single brace is refused; so is nesting beyond 512 levels.
    void JSONParse(const UString& text);
};

class JSONArray : public JSONItem {
  public:
    JSONArray() : JSONItem(kArray) {}
    void Render(WebContext& ctx, WebRender* out) override;
    JSONItem* copy() const override;
};
