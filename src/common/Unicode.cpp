#include "common/Unicode.h"

#include <cstddef>
#include <cstdint>

namespace {

constexpr uint32_t kReplacement = 0xFFFD;
constexpr uint32_t kMaxBmp = 0xFFFF;
constexpr uint32_t kMaxUnicode = 0x10FFFF;

bool IsHighSurrogate(uint32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

bool IsLowSurrogate(uint32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

bool IsSurrogate(uint32_t c) {
    return IsHighSurrogate(c) || IsLowSurrogate(c);
}

// How many bytes the lead byte announces in all, in the original scheme of up to six.
int AnnouncedLength(UTF8 lead) {
    if (lead < 0xC0) return 1;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    if (lead < 0xF8) return 4;
    return lead < 0xFC ? 5 : 6;
}

// One character, taken from a source, and how many units it took there: none when it stops the
// conversion. An illegal one that took units stands for the replacement of a bad value.
struct Decoded {
    ConversionResult result;
    uint32_t character;
    ptrdiff_t units;
};

Decoded Decode(const UTF32* at, const UTF32*, ConversionFlags flags) {
    const auto c = static_cast<uint32_t>(*at);
    if (flags == strictConversion && (IsSurrogate(c) || c > kMaxUnicode))
        return {sourceIllegal, 0, 0};
    if (c > kMaxUnicode) return {sourceIllegal, kReplacement, 1};
    return {conversionOK, c, 1};
}

Decoded Decode(const UTF16* at, const UTF16* end, ConversionFlags flags) {
    const uint32_t c = *at;
    if (IsHighSurrogate(c)) {
        if (end - at < 2) return {sourceExhausted, 0, 0};
        if (IsLowSurrogate(at[1]))
            return {conversionOK, ((c - 0xD800) << 10) + (at[1] - 0xDC00u) + 0x10000, 2};
    }
    if (flags == strictConversion && IsSurrogate(c)) return {sourceIllegal, 0, 0};
    return {conversionOK, c, 1};
}

Decoded Decode(const UTF8* at, const UTF8* end, ConversionFlags) {
    const int length = AnnouncedLength(*at);
    if (length > end - at) return {sourceExhausted, 0, 0};
    if (!isLegalUTF8(at, length)) return {sourceIllegal, 0, 0};
    if (length == 1) return {conversionOK, *at, 1};
    // The lead byte carries 5, 4 or 3 bits, each further byte 6.
    uint32_t c = *at & (0xFFu >> (length + 1));
    for (int i = 1; i < length; ++i)
        c = (c << 6) | (at[i] & 0x3Fu);
    return {conversionOK, c, length};
}

// Each writes a character up to kMaxUnicode; false, and nothing written, when there is no room. A
// surrogate from UTF-32 keeps its value in UTF-8 but has none in UTF-16.
bool Encode(uint32_t c, UTF32*& to, UTF32* end) {
    if (to >= end) return false;
    *to++ = static_cast<UTF32>(c);
    return true;
}

bool Encode(uint32_t c, UTF16*& to, UTF16* end) {
    if (end - to < (c > kMaxBmp ? 2 : 1)) return false;
    if (IsSurrogate(c)) c = kReplacement;
    if (c > kMaxBmp) {
        *to++ = static_cast<UTF16>(0xD800 + ((c - 0x10000) >> 10));
        c = 0xDC00 + ((c - 0x10000) & 0x3FF);
    }
    *to++ = static_cast<UTF16>(c);
    return true;
}

bool Encode(uint32_t c, UTF8*& to, UTF8* end) {
    const int length = c < 0x80 ? 1 : c < 0x800 ? 2 : c <= kMaxBmp ? 3 : 4;
    if (end - to < length) return false;
    if (length == 1) {
        *to++ = static_cast<UTF8>(c);
        return true;
    }
    const uint32_t lead = (0xFFu << (8 - length)) & 0xFFu;
    int shift = 6 * (length - 1);
    *to++ = static_cast<UTF8>(lead | (c >> shift));
    while (shift > 0) {
        shift -= 6;
        *to++ = static_cast<UTF8>(0x80 | ((c >> shift) & 0x3F));
    }
    return true;
}

template <class From, class To>
ConversionResult Convert(const From** sourceStart, const From* sourceEnd, To** targetStart,
                         To* targetEnd, ConversionFlags flags) {
    ConversionResult result = conversionOK;
    while (*sourceStart < sourceEnd) {
        const Decoded next = Decode(*sourceStart, sourceEnd, flags);
        if (next.units == 0) return next.result;
        if (!Encode(next.character, *targetStart, targetEnd)) return targetExhausted;
        *sourceStart += next.units;
        if (next.result != conversionOK) result = next.result;
    }
    return result;
}

}  // namespace

ConversionResult ConvertUTF32toUTF16(const UTF32** sourceStart, const UTF32* sourceEnd,
                                     UTF16** targetStart, UTF16* targetEnd, ConversionFlags flags) {
    const ConversionResult result = Convert(sourceStart, sourceEnd, targetStart, targetEnd, flags);
    // Lenient, only a replaced value is reported as illegal, and here that is no complaint.
    return flags == lenientConversion && result == sourceIllegal ? conversionOK : result;
}

ConversionResult ConvertUTF16toUTF32(const UTF16** sourceStart, const UTF16* sourceEnd,
                                     UTF32** targetStart, UTF32* targetEnd, ConversionFlags flags) {
    return Convert(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF16toUTF8(const UTF16** sourceStart, const UTF16* sourceEnd,
                                    UTF8** targetStart, UTF8* targetEnd, ConversionFlags flags) {
    return Convert(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF8toUTF16(const UTF8** sourceStart, const UTF8* sourceEnd,
                                    UTF16** targetStart, UTF16* targetEnd, ConversionFlags flags) {
    return Convert(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF32toUTF8(const UTF32** sourceStart, const UTF32* sourceEnd,
                                    UTF8** targetStart, UTF8* targetEnd, ConversionFlags flags) {
    return Convert(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF8toUTF32(const UTF8** sourceStart, const UTF8* sourceEnd,
                                    UTF32** targetStart, UTF32* targetEnd, ConversionFlags flags) {
    return Convert(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

bool isLegalUTF8Sequence(const UTF8* source, const UTF8* sourceEnd) {
    if (source >= sourceEnd) return false;
    const int length = AnnouncedLength(*source);
    return length <= sourceEnd - source && isLegalUTF8(source, length);
}

bool isLegalUTF8(const UTF8* source, int length) {
    if (length < 1 || length > 4) return false;
    const UTF8 lead = *source;
    // 80 to C1 lead nothing, or an overlong form; F5 and above lead beyond U+10FFFF.
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4) return false;
    for (int i = 1; i < length; ++i)
        if ((source[i] & 0xC0) != 0x80) return false;
    if (length == 1) return true;
    const UTF8 second = source[1];
    switch (lead) {
        case 0xE0:  // below: overlong
            return second >= 0xA0;
        case 0xED:  // above: surrogates
            return second <= 0x9F;
        case 0xF0:  // below: overlong
            return second >= 0x90;
        case 0xF4:  // above: beyond U+10FFFF
            return second <= 0x8F;
        default:
            return true;
    }
}
