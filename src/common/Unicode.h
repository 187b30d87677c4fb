// Unicode.h: conversions between UTF-8, UTF-16 and UTF-32, with the names and the semantics of the
// reference routines that the Unicode Consortium published.
#pragma once

// The 32-bit unit is the wide character, so that wide texts convert without a cast.
using UTF32 = wchar_t;
using UTF16 = char16_t;
using UTF8 = unsigned char;
static_assert(sizeof(UTF32) == 4);

enum ConversionResult {
    conversionOK,     // the whole source was converted
    sourceExhausted,  // the source ends inside a character
    targetExhausted,  // the target has no room for the next character
    sourceIllegal     // the source is malformed
};

// Strict refuses lone surrogates and values beyond U+10FFFF; lenient passes or replaces them.
// Malformed UTF-8 stops either.
enum ConversionFlags { strictConversion = 0, lenientConversion };

// Each converts from *sourceStart up to sourceEnd into *targetStart up to targetEnd and moves both
// start pointers behind what was done. A character that cannot be converted, or has no room, is not
// consumed. No terminator is written, nothing past an end is read or written.
//
// A value beyond U+10FFFF becomes U+FFFD; ConvertUTF32toUTF8 then goes on but answers
// sourceIllegal.
ConversionResult ConvertUTF32toUTF16(const UTF32** sourceStart, const UTF32* sourceEnd,
                                     UTF16** targetStart, UTF16* targetEnd, ConversionFlags flags);
ConversionResult ConvertUTF16toUTF32(const UTF16** sourceStart, const UTF16* sourceEnd,
                                     UTF32** targetStart, UTF32* targetEnd, ConversionFlags flags);
ConversionResult ConvertUTF16toUTF8(const UTF16** sourceStart, const UTF16* sourceEnd,
                                    UTF8** targetStart, UTF8* targetEnd, ConversionFlags flags);
ConversionResult ConvertUTF8toUTF16(const UTF8** sourceStart, const UTF8* sourceEnd,
                                    UTF16** targetStart, UTF16* targetEnd, ConversionFlags flags);
ConversionResult ConvertUTF32toUTF8(const UTF32** sourceStart, const UTF32* sourceEnd,
                                    UTF8** targetStart, UTF8* targetEnd, ConversionFlags flags);
ConversionResult ConvertUTF8toUTF32(const UTF8** sourceStart, const UTF8* sourceEnd,
                                    UTF32** targetStart, UTF32* targetEnd, ConversionFlags flags);

// True when the bytes from `source` on begin with one whole, legal UTF-8 character.
bool isLegalUTF8Sequence(const UTF8* source, const UTF8* sourceEnd);
// True when the `length` bytes (1 to 4) are legal as the UTF-8 form of one character of that
// length.
bool isLegalUTF8(const UTF8* source, int length);
