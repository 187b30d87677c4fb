#include "common/Html.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace {

using EscapeTable = std::array<std::string_view, 256>;

constexpr EscapeTable kTextEscapes = [] {
    EscapeTable table{};
    table['&'] = "&amp;";
    table['<'] = "&lt;";
    table['>'] = "&gt;";
    return table;
}();

constexpr EscapeTable kAttrEscapes = [] {
    EscapeTable table = kTextEscapes;
    table['"'] = "&quot;";
    table['\''] = "&#39;";
    return table;
}();

// Copies the runs between escaped characters whole: most values have none.
void AppendEscaped(std::string& out, std::string_view text, const EscapeTable& escapes) {
    size_t copied = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const std::string_view escape = escapes[static_cast<unsigned char>(text[i])];
        if (escape.empty()) continue;
        out.append(text, copied, i - copied);
        out.append(escape);
        copied = i + 1;
    }
    out.append(text, copied);
}

constexpr uint64_t kEachByte = 0x0101010101010101;

// Has one of the eight bytes this value?
bool HasByte(uint64_t bytes, char value) {
    const uint64_t differences = bytes ^ (kEachByte * static_cast<unsigned char>(value));
    return ((differences - kEachByte) & ~differences & (kEachByte << 7)) != 0;
}

// Has the text a character that element content escapes? Looks at eight at a time: most have none.
bool HasEscapes(std::string_view text) {
    while (text.size() >= sizeof(uint64_t)) {
        uint64_t bytes;
        memcpy(&bytes, text.data(), sizeof bytes);
        if (HasByte(bytes, '&') || HasByte(bytes, '<') || HasByte(bytes, '>')) return true;
        text.remove_prefix(sizeof bytes);
    }
    for (const char c : text)
        if (c == '&' || c == '<' || c == '>') return true;
    return false;
}

UString Escaped(const char* text, const EscapeTable& escapes) {
    if (text == nullptr) return UString();
    std::string out;
    AppendEscaped(out, text, escapes);
    return UString(out.c_str());
}

}  // namespace

UString HtmlText(const char* text) {
    return Escaped(text, kTextEscapes);
}

UString HtmlAttr(const char* text) {
    return Escaped(text, kAttrEscapes);
}

void AppendHtmlText(std::string& out, std::string_view text) {
    if (HasEscapes(text))
        AppendEscaped(out, text, kTextEscapes);
    else
        out.append(text);
}
