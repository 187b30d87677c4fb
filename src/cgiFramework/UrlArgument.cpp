#include "cgiFramework/UrlArgument.h"

namespace {

bool IsUnreserved(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

}  // namespace

void AppendUrlValue(std::string& url, std::string_view value) {
    constexpr char kHex[] = "0123456789ABCDEF";
    for (const char raw : value) {
        const auto c = static_cast<unsigned char>(raw);
        if (IsUnreserved(c)) {
            url += raw;
        } else {
            url += '%';
            url += kHex[c >> 4];
            url += kHex[c & 15];
        }
    }
}

void AppendUrlArgument(std::string& url, std::string_view name, std::string_view value) {
    url += '&';
    url += name;
    url += '=';
    AppendUrlValue(url, value);
}
