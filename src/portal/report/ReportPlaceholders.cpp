#include "portal/report/ReportPlaceholders.h"

#include <algorithm>

#include "common/ThrowText.h"

namespace {

bool IsNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The name between the bracket at `open` and the next closing one; empty when that is no name.
std::string_view NameAt(std::string_view text, size_t open) {
    size_t end = open + 1;
    while (end < text.size() && IsNameCharacter(text[end]))
        ++end;
    if (end == text.size() || text[end] != ']') return {};
    return text.substr(open + 1, end - open - 1);
}

}  // namespace

std::string FillPlaceholders(std::string_view text, const std::vector<ReportPlaceholder>& values) {
    std::string filled;
    filled.reserve(text.size() * 2);
    size_t at = 0;
    while (at < text.size()) {
        const size_t open = std::min(text.find('[', at), text.size());
        filled.append(text, at, open - at);
        if (open == text.size()) break;

        const std::string_view name = NameAt(text, open);
        if (name.empty()) {
            filled += '[';
            at = open + 1;
            continue;
        }
        const auto found = std::find_if(values.begin(), values.end(),
                                        [&](const auto& value) { return value.name == name; });
        if (found == values.end())
            ThrowText("The report's query uses the unknown placeholder [%s].",
                      std::string(name).c_str());
        filled += found->value;
        at = open + name.size() + 2;
    }
    return filled;
}
