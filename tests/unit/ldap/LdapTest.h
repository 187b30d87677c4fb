// LdapTest.h: what the tests of the directory layer share.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ldap/asn1ber.h"
#include "ldap/ldap_rx.h"
#include "unit/Reports.h"

using Bytes = std::vector<unsigned char>;

// Bytes from hexadecimal digits; blanks between them do not count.
inline Bytes FromHex(std::string_view hex) {
    Bytes bytes;
    std::string digits;
    for (const char c : hex) {
        if (c != ' ') digits += c;
        if (digits.size() < 2) continue;
        bytes.push_back(static_cast<unsigned char>(std::strtoul(digits.c_str(), nullptr, 16)));
        digits.clear();
    }
    return bytes;
}

inline std::string ToHex(const unsigned char* data, size_t size) {
    std::string hex;
    char digits[4];
    for (size_t i = 0; i < size; ++i) {
        std::snprintf(digits, sizeof digits, i == 0 ? "%02X" : " %02X", data[i]);
        hex += digits;
    }
    return hex;
}

// Encodes into a block of just the measured size, so that a sanitizer sees a byte too many.
inline std::string Encoded(ASN1Type& element) {
    const auto block = std::make_unique<unsigned char[]>(element.Length());
    unsigned char* out = block.get();
    element.BerEncode(out);
    return ToHex(block.get(), out - block.get());
}

inline LDAPBytes Message(const Bytes& bytes) {
    LDAPBytes message;
    message.data = std::make_unique<unsigned char[]>(bytes.size());
    message.size = bytes.size();
    if (!bytes.empty()) std::memcpy(message.data.get(), bytes.data(), bytes.size());
    return message;
}

inline std::string Text(const ASN1String& string) {
    return {string.str.get(), string.length};
}
