#include "pdf/PdfText.h"

#include "common/Unicode.h"

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";

size_t CharacterLength(char first) {
    const auto c = static_cast<unsigned char>(first);
    return c < 0x80 ? 1 : c < 0xE0 ? 2 : 3;
}

}  // namespace

std::string PrintableText(std::string_view text) {
    std::string clean;
    const auto* at = reinterpret_cast<const UTF8*>(text.data());
    const UTF8* end = at + text.size();
    while (at < end) {
        size_t length = 1;
        if (*at < 0x80) {
            clean += *at < ' ' || *at == 0x7F ? ' ' : static_cast<char>(*at);
        } else if (!isLegalUTF8Sequence(at, end)) {
            clean += kReplacement;
        } else if (*at >= 0xF0) {
            clean += kReplacement;
            length = 4;
        } else {
            length = CharacterLength(static_cast<char>(*at));
            clean.append(reinterpret_cast<const char*>(at), length);
        }
        at += length;
    }
    return clean;
}

float PdfText::CharacterWidth(std::string_view character) {
    const auto [entry, isNew] = widths_.try_emplace(std::string(character), 0.0F);
    if (isNew) {
        const auto* bytes = reinterpret_cast<const HPDF_BYTE*>(entry->first.c_str());
        const HPDF_TextWidth width =
            HPDF_Font_TextWidth(font_, bytes, static_cast<HPDF_UINT>(entry->first.size()));
        entry->second = static_cast<float>(width.width) * size_ / 1000;
    }
    return entry->second;
}

float PdfText::Width(std::string_view text) {
    float width = 0;
    for (size_t i = 0; i < text.size();) {
        const size_t length = CharacterLength(text[i]);
        width += CharacterWidth(text.substr(i, length));
        i += length;
    }
    return width;
}

void PdfText::BreakWord(std::string_view word, float width, std::vector<std::string>& lines) {
    float used = Width(lines.back());
    for (size_t i = 0; i < word.size();) {
        const std::string_view character = word.substr(i, CharacterLength(word[i]));
        const float more = CharacterWidth(character);
        if (used + more > width && !lines.back().empty()) {
            lines.emplace_back();
            used = 0;
        }
        lines.back() += character;
        used += more;
        i += character.size();
    }
}

std::vector<std::string> PdfText::Lines(const std::string& text, float width) {
    std::vector<std::string> lines(1);
    std::string_view left = text;
    while (!left.empty()) {
        const std::string_view word = left.substr(0, left.find(' '));
        left.remove_prefix(std::min(left.size(), word.size() + 1));
        if (word.empty()) continue;
        std::string& line = lines.back();
        const std::string longer =
            line.empty() ? std::string(word) : line + " " + std::string(word);
        if (Width(longer) <= width) {
            line = longer;
            continue;
        }
        if (!line.empty()) lines.emplace_back();
        BreakWord(word, width, lines);
    }
    return lines;
}
