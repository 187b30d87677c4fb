#include "common/Html.h"

#include <array>

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
    // Without an exit from the loop the compiler looks at many characters at once.
    bool needsEscapes = false;
    for (const char c : text)
        needsEscapes |= c == '&' || c == '<' || c == '>';
    if (needsEscapes)
        AppendEscaped(out, text, kTextEscapes);
    else
        out.append(text);
}
