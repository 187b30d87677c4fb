#include "cgiFramework/XMLPage.h"

#include <cstdlib>
#include <string>

#include "common/Html.h"
#include "common/Unicode.h"

namespace {

bool IsLineCharacter(unsigned char c) {
    return c >= ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Length of the character at `p`, or 0 when no document may hold it. One broken character would
// make the browser refuse the whole document.
size_t CharacterLength(const UTF8* p, const UTF8* end) {
    if (*p < 0x80) return IsLineCharacter(*p) ? 1 : 0;
    if (!isLegalUTF8Sequence(p, end)) return 0;
    return *p < 0xE0 ? 2 : *p < 0xF0 ? 3 : 4;
}

}  // namespace

XMLPage::XMLPage()
    : header(
          "Cache-Control: no-cache, no-store, max-age=1, must-revalidate\n"
          "Content-type: \tapplication/xml\n\n") {}

void XMLPage::Render(WebContext& ctx, WebRender* out) {
    if (!header.IsEmpty()) out->Write(header.c_str());
    out->Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    RenderChildren(ctx, out);
}

XMLItem::XMLItem(const char* name_, const char* value, const char* tagsFormat, ...)
    : name(name_), svalue(value) {
    if (tagsFormat == nullptr) return;
    va_list args;
    va_start(args, tagsFormat);
    tags.vFormat(tagsFormat, args);
    va_end(args);
}

XMLItem::XMLItem(const char* name_, int value, const char* tagsFormat, ...) : name(name_) {
    Set(value);
    if (tagsFormat == nullptr) return;
    va_list args;
    va_start(args, tagsFormat);
    tags.vFormat(tagsFormat, args);
    va_end(args);
}

void XMLItem::SetTags(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    tags.vFormat(fmt, args);
    va_end(args);
}

void XMLItem::Set(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    svalue.vFormat(fmt, args);
    va_end(args);
}

void XMLItem::Set(int value) {
    svalue.Format("%d", value);
}

XMLItem::operator int() const {
    return static_cast<int>(strtol(svalue.c_str(), nullptr, 10));
}

UString XMLItem::Parse(const char* text) {
    std::string clean = text != nullptr ? text : "";
    const UTF8* begin = reinterpret_cast<const UTF8*>(clean.c_str());
    const UTF8* end = begin + clean.size();
    for (size_t i = 0; i < clean.size();) {
        const size_t length = CharacterLength(begin + i, end);
        if (length == 0)
            clean[i++] = ' ';
        else
            i += length;
    }
    return HtmlText(clean.c_str());
}

void XMLItem::Render(WebContext& ctx, WebRender* out) {
    const UString element = Parse(name.c_str());
    const UString attributes = Parse(tags.c_str());
    if (svalue.IsEmpty() && contains.empty()) {
        if (attributes.IsEmpty())
            out->printf("<%s/>\n", element.c_str());
        else
            out->printf("<%s %s/>\n", element.c_str(), attributes.c_str());
        return;
    }
    const UString text = Parse(svalue.c_str());
    const char* lineEnd = svalue.IsEmpty() ? "\n" : "";
    if (attributes.IsEmpty())
        out->printf("<%s>%s%s", element.c_str(), text.c_str(), lineEnd);
    else
        out->printf("<%s %s>%s%s", element.c_str(), attributes.c_str(), text.c_str(), lineEnd);
    RenderChildren(ctx, out);
    out->printf("</%s>\n", element.c_str());
}
