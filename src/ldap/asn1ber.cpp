#include "ldap/asn1ber.h"

#include <cassert>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kernel/OSConsole.h"
#include "ldap/BerCursor.h"

namespace {

// Bytes of content that `v` takes. The bounds below zero are a little tighter than two's complement
// needs: peers are used to these sizes, and the longer form means the same.
unsigned IntegerSize(int v) {
    if (v >= 0) {
        if ((v & 0x7F800000) != 0) return 4;
        if ((v & 0xFF8000) != 0) return 3;
        return (v & 0xFF80) != 0 ? 2 : 1;
    }
    if (v >= -128) return 1;
    if (v >= -32513) return 2;
    return v >= -8323073 ? 3 : 4;
}

bool IsHexDigit(char c) {
    return std::strchr("0123456789abcdefABCDEF", c) != nullptr && c != '\0';
}

// Undoes backslash escapes. An escape that the end of the text cuts short ends there.
std::string Unescaped(const char* text) {
    std::string bytes;
    while (*text != '\0') {
        if (*text != '\\') {
            bytes += *text++;
            continue;
        }
        const char digits[3] = {text[1], text[1] != '\0' ? text[2] : '\0', '\0'};
        if (!IsHexDigit(digits[0]) || !IsHexDigit(digits[1]))
            ConsoleReport("ASN1String::ASN1String: invalid hex escape sequence %c%c%c", *text,
                          digits[0], digits[1]);
        bytes += static_cast<char>(std::strtol(digits, nullptr, 16));
        text += 1 + std::strlen(digits);
    }
    return bytes;
}

}  // namespace

unsigned long ASN1Type::Length() {
    return 1UL + lenlen + length;
}

void ASN1Type::SetLength(unsigned long n) {
    assert(n <= UINT32_MAX);
    length = static_cast<uint32_t>(n);
    if (n <= 127) {
        lenlen = 1;
        coded_length[0] = static_cast<uint8_t>(n);
        return;
    }
    lenlen = n > 0xFFFFFF ? 5 : n > 0xFFFF ? 4 : n > 0xFF ? 3 : 2;
    coded_length[0] = static_cast<uint8_t>(0x80 + lenlen - 1);
    for (int i = lenlen - 1; i > 0; --i, n >>= 8)
        coded_length[i] = static_cast<uint8_t>(n);
}

void ASN1Type::BerHdr(unsigned char*& out) const {
    *out++ = tag;
    std::memcpy(out, coded_length, lenlen);
    out += lenlen;
}

unsigned ASN1Type::GetLenLen(const unsigned char* p) {
    return (*p & 0x80) != 0 ? (*p & 0x7Fu) + 1 : 1;
}

void ASN1Type::GetLen(const unsigned char* p) {
    BerCursor in = BerCursor::Trusted(p);
    if (!PeekLength(in)) lenlen = static_cast<int32_t>(GetLenLen(p));
}

bool ASN1Type::PeekLength(BerCursor& in) {
    unsigned octets = 0;
    if (!in.PeekLength(0, octets, length)) return false;
    lenlen = static_cast<int32_t>(octets);
    std::memcpy(coded_length, in.at(), octets);
    return true;
}

ASN1Integer::ASN1Integer(int v, unsigned char elementTag) : ASN1Type(elementTag), val(v) {
    SetLength(IntegerSize(v));
    auto bits = static_cast<uint32_t>(v);
    for (uint32_t i = length; i-- > 0; bits >>= 8)
        coded_val[i] = static_cast<uint8_t>(bits);
}

ASN1Integer::ASN1Integer(unsigned char*& p) : ASN1Type(0) {
    BerCursor in = BerCursor::Trusted(p);
    Decode(in);
    p += in.at() - p;
}

ASN1Integer::ASN1Integer(BerCursor& in) : ASN1Type(0) {
    Decode(in);
}

void ASN1Integer::Decode(BerCursor& in) {
    if (!in.ReadTag(tag)) return;
    if (tag != 0x01 && tag != 0x02 && tag != 0x0A) {
        ConsoleReport("ASN1Integer::ASN1Integer: unexpected tag: 0x%02x\r\n", tag);
        in.Fail();
        return;
    }
    if (!PeekLength(in)) return;
    if (length < 1 || length > sizeof coded_val) {
        ConsoleReport("ASN1Integer::ASN1Integer: invalid length %d\r\n", static_cast<int>(length));
        in.Fail();
        return;
    }
    if (in.left() - lenlen < length) {
        in.Fail();
        return;
    }
    in.Take(lenlen);
    std::memcpy(coded_val, in.Take(length).at(), length);
    uint32_t bits = (coded_val[0] & 0x80) != 0 ? UINT32_MAX : 0;
    for (uint32_t i = 0; i < length; ++i)
        bits = (bits << 8) | coded_val[i];
    val = static_cast<int32_t>(bits);
}

void ASN1Integer::BerEncode(unsigned char*& out) {
    BerHdr(out);
    std::memcpy(out, coded_val, length);
    out += length;
}

ASN1String::ASN1String(const char* text, int unescape) : ASN1Type(0x04) {
    if (text == nullptr) text = "";
    if (unescape == 0) {
        SetContent(text, std::strlen(text));
        return;
    }
    const std::string bytes = Unescaped(text);
    SetContent(bytes.data(), bytes.size());
}

ASN1String::ASN1String(const unsigned char* data, unsigned long size) : ASN1Type(0x04) {
    SetContent(data, size);
}

ASN1String::ASN1String(unsigned char*& p) : ASN1Type(0) {
    BerCursor in = BerCursor::Trusted(p);
    Decode(in);
    p += in.at() - p;
}

ASN1String::ASN1String(BerCursor& in) : ASN1Type(0) {
    Decode(in);
}

void ASN1String::SetContent(const void* data, size_t size) {
    SetLength(size);
    str = std::make_unique<char[]>(size + 1);
    if (size > 0) std::memcpy(str.get(), data, size);
}

void ASN1String::Decode(BerCursor& in) {
    BerCursor content(nullptr, 0);
    if (in.ReadTag(tag) && PeekLength(in)) {
        if (in.left() - lenlen < length) {
            in.Fail();
            length = 0;
        } else {
            in.Take(lenlen);
            content = in.Take(length);
        }
    }
    str = std::make_unique<char[]>(size_t{length} + 1);
    if (length > 0) std::memcpy(str.get(), content.at(), length);
}

void ASN1String::BerEncode(unsigned char*& out) {
    BerHdr(out);
    std::memcpy(out, str.get(), length);
    out += length;
}

void ASN1Sequence::Add2Seq(ASN1Type* child) {
    if (child == nullptr) ConsoleReport("ASN1Sequence::Add2Seq: attempt to add null object");
    seq_list.emplace_back(child);
}

unsigned long ASN1Sequence::Length() {
    unsigned long sum = 0;
    for (const auto& child : seq_list)
        if (child != nullptr) sum += child->Length();
    SetLength(sum);
    return ASN1Type::Length();
}

void ASN1Sequence::BerEncode(unsigned char*& out) {
    BerHdr(out);
    for (const auto& child : seq_list)
        if (child != nullptr) child->BerEncode(out);
}
