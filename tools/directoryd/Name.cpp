#include "tools/directoryd/Name.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace directoryd {

namespace {

char FoldByte(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ' &&
           (text.size() < 2 || text[text.size() - 2] != '\\'))
        text.remove_suffix(1);
    return text;
}

// Where the part at the beginning of `name` ends: at its first comma without a backslash.
size_t PartEnd(std::string_view name) {
    for (size_t i = 0; i < name.size(); ++i) {
        if (name[i] == '\\')
            ++i;
        else if (name[i] == ',')
            return i;
    }
    return name.size();
}

std::string Unescape(std::string_view text) {
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            plain += text[i];
            continue;
        }
        unsigned byte = 0;
        const char* const digits = text.data() + i + 1;
        if (i + 2 < text.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            plain += static_cast<char>(byte);
            i += 2;
        } else {
            plain += text[++i];
        }
    }
    return plain;
}

}  // namespace

std::string Fold(std::string_view text) {
    std::string folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), FoldByte);
    return folded;
}

bool SameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return FoldByte(x) == FoldByte(y); });
}

bool ParseName(std::string_view name, std::vector<Rdn>& parts) {
    std::vector<std::string> texts;
    for (bool more = !Trim(name).empty(); more;) {
        const size_t end = PartEnd(name);
        const std::string_view piece = name.substr(0, end);
        if (piece.find('=') != std::string_view::npos)
            texts.emplace_back(Trim(piece));
        else if (!texts.empty())
            texts.back().append(",").append(piece);
        else
            return false;
        more = end < name.size();
        name.remove_prefix(more ? end + 1 : end);
    }
    parts.clear();
    for (const std::string& text : texts) {
        const size_t equals = text.find('=');
        const std::string_view type = Trim(std::string_view(text).substr(0, equals));
        const std::string value = Unescape(Trim(std::string_view(text).substr(equals + 1)));
        if (!IsAttributeName(type) || value.find('\0') != std::string::npos) return false;
        parts.push_back({std::string(type), value, text});
    }
    return true;
}

Rdn MakeRdn(std::string_view type, std::string_view value) {
    std::string escaped;
    for (size_t i = 0; i < value.size(); ++i) {
        const bool outerBlank = value[i] == ' ' && (i == 0 || i + 1 == value.size());
        if (value[i] == ',' || value[i] == '\\' || outerBlank) escaped += '\\';
        escaped += value[i];
    }
    return {std::string(type), std::string(value), std::string(type) + "=" + escaped};
}

bool IsAttributeName(std::string_view name) {
    return !name.empty() && name.size() <= 128 && std::all_of(name.begin(), name.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
               std::string_view("_-.;").find(c) != std::string_view::npos;
    });
}

}  // namespace directoryd
