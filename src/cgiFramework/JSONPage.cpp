#include "cgiFramework/JSONPage.h"

#include <cstring>
#include <memory>
#include <string>

#include "cgiFramework/JSONText.h"

namespace {

template <class ItemList>
void RenderJoined(const ItemList& items, WebContext& ctx, WebRender* out) {
    const char* separator = "";
    for (WebItem& item : items) {
        out->Write(separator);
        item.Render(ctx, out);
        separator = ",";
    }
}

}  // namespace

JSONPage::JSONPage(bool asHtml) : WebPage(/*addToHistory=*/false) {
    header = asHtml ? "Cache-Control: no-cache, no-store, max-age=1, must-revalidate\n"
                      "Content-type: text/html;charset=utf-8\n\n"
                    : "Cache-Control: no-cache, no-store, max-age=1, must-revalidate\n"
                      "Content-type: application/x-json\n\n";
}

void JSONPage::Render(WebContext& ctx, WebRender* out) {
    RenderCookies(ctx, out);
    if (!header.IsEmpty()) out->Write(header.c_str());
    if (!no_top_obj) out->Write("{");
    RenderJoined(contains, ctx, out);
    if (!no_top_obj) out->Write("\n}");
}

JSONItem* JSONItem::GetElement(int index) const {
    for (WebItem& element : Elements()) {
        if (index-- == 0) return dynamic_cast<JSONItem*>(&element);
    }
    return nullptr;
}

JSONItem* JSONItem::GetElement(const char* pairName) const {
    for (WebItem& element : Elements()) {
        auto* item = dynamic_cast<JSONItem*>(&element);
        if (item != nullptr && item->isJSONPair() && item->name == pairName) return item;
    }
    return nullptr;
}

UString JSONItem::toString(WebContext& ctx) {
    UStringWebRender out;
    Render(ctx, &out);
    return std::move(out.output);
}

void JSONItem::CopyElements(JSONItem& to) const {
    for (WebItem& element : Elements()) {
        if (const auto* item = dynamic_cast<JSONItem*>(&element)) to.Add(item->copy());
    }
}

JSONValue::JSONValue(const UString& text, bool raw) : JSONItem(kValue), type(raw ? 1 : 0) {
    std::string escaped;
    for (const char* p = text.c_str(); *p != '\0'; ++p) {
        if (*p == '\\' && p[1] != '\0' && strchr("nr\"\\t", p[1]) != nullptr) {
            escaped.append(p, 2);
            ++p;
        } else {
            AppendJSONEscaped(escaped, *p);
        }
    }
    value = escaped.c_str();
}

void JSONValue::Render(WebContext&, WebRender* out) {
    out->printf(type == 0 ? "\"%s\"" : "%s", value.c_str());
}

JSONItem* JSONValue::copy() const {
    auto twin = std::make_unique<JSONValue>(UString(), type != 0);
    twin->value = value;  // which is escaped already
    return twin.release();
}

JSONPair::JSONPair(const UString& name_, const UString& value_, bool raw) : JSONItem(kPair) {
    name = name_;
    li.Append(new JSONValue(value_, raw));
}

JSONPair::JSONPair(const UString& name_, WebItem* item) : JSONItem(kPair) {
    li.Append(item);
    name = name_;
}

void JSONPair::Render(WebContext& ctx, WebRender* out) {
    out->printf("\"%s\" : ", name.c_str());
    if (!li.empty()) li.First()->Render(ctx, out);
}

JSONItem* JSONPair::copy() const {
    std::unique_ptr<JSONPair> twin;
    for (WebItem& element : li) {
        const auto* item = dynamic_cast<JSONItem*>(&element);
        if (item == nullptr) continue;
        if (twin == nullptr)
            twin = std::make_unique<JSONPair>(name, item->copy());
        else
            twin->Add(item->copy());
    }
    if (twin == nullptr) twin = std::make_unique<JSONPair>(name, "null", /*raw=*/true);
    return twin.release();
}

void JSONPair::GiveUpChildren(OSListBase& to) {
    to.Splice(li);
    JSONItem::GiveUpChildren(to);
}

JSONObject::JSONObject(const UString& text) : JSONObject() {
    JSONParse(text);
}

void JSONObject::JSONParse(const UString& text) {
    CheckJSONBalance(text.c_str());
    JSONTextReader(text.c_str()).Document(*this);
}

void JSONObject::Render(WebContext& ctx, WebRender* out) {
    out->Write("{");
    RenderJoined(contains, ctx, out);
    out->Write("\n}");
}

JSONItem* JSONObject::copy() const {
    auto twin = std::make_unique<JSONObject>();
    CopyElements(*twin);
    return twin.release();
}

void JSONArray::Render(WebContext& ctx, WebRender* out) {
    out->Write("[");
    RenderJoined(contains, ctx, out);
    out->Write("\n]");
}

JSONItem* JSONArray::copy() const {
    auto twin = std::make_unique<JSONArray>();
    CopyElements(*twin);
    return twin.release();
}
