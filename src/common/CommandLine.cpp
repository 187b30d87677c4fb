#include "common/CommandLine.h"

#include <cstring>
#include <string_view>

CommandLine::CommandLine(const char* text, const char* separators) {
    std::string_view rest = text != nullptr ? text : "";
    rest = rest.substr(0, kMaxBytes);
    words_.reserve(rest.size() + 1);
    while (starts_.size() < kMaxWords) {
        const size_t begin = rest.find_first_not_of(separators);
        if (begin == std::string_view::npos) return;
        rest.remove_prefix(begin);
        starts_.push_back(words_.size());
        bool quoted = false;
        size_t end = 0;
        for (; end < rest.size(); ++end) {
            if (rest[end] == '"')
                quoted = !quoted;
            else if (!quoted && std::strchr(separators, rest[end]) != nullptr)
                break;
            else
                words_ += rest[end];
        }
        words_ += '\0';
        rest.remove_prefix(end);
    }
}

const char* CommandLine::operator[](int i) const {
    return i >= 0 && i < argc() ? words_.c_str() + starts_[static_cast<size_t>(i)] : "";
}
