#include "common/Unicode.h"

#include <doctest/doctest.h>

#include <string>
#include <vector>

namespace {

template <class To>
struct Outcome {
    ConversionResult result;
    std::vector<To> text;
    size_t taken;
    bool operator==(const Outcome&) const = default;
};

// Converts a heap copy of `source` into a target of exactly `room` units.
template <class To, class From, class Function>
Outcome<To> Run(Function convert, const std::vector<From>& source, ConversionFlags flags,
                size_t room) {
    const std::vector<From> copy(source);
    std::vector<To> target(room);
    const From* from = copy.data();
    To* to = target.data();
    const ConversionResult result =
        convert(&from, from + copy.size(), &to, to + target.size(), flags);
    target.resize(static_cast<size_t>(to - target.data()));
    return {result, target, static_cast<size_t>(from - copy.data())};
}

using Bytes = std::vector<UTF8>;
using Words = std::vector<UTF16>;
using Wides = std::vector<UTF32>;

// One character in the three forms, at each border of a form's length.
const struct {
    const char* what;
    Bytes utf8;
    Words utf16;
    Wides utf32;
} kSame[] = {
    {"NUL", {0x00}, {0x0000}, {0x0000}},
    {"last of one byte", {0x7F}, {0x007F}, {0x007F}},
    {"first of two", {0xC2, 0x80}, {0x0080}, {0x0080}},
    {"last of two", {0xDF, 0xBF}, {0x07FF}, {0x07FF}},
    {"first of three", {0xE0, 0xA0, 0x80}, {0x0800}, {0x0800}},
    {"below the surrogates", {0xED, 0x9F, 0xBF}, {0xD7FF}, {0xD7FF}},
    {"above the surrogates", {0xEE, 0x80, 0x80}, {0xE000}, {0xE000}},
    {"last of three", {0xEF, 0xBF, 0xBF}, {0xFFFF}, {0xFFFF}},
    {"first of four", {0xF0, 0x90, 0x80, 0x80}, {0xD800, 0xDC00}, {0x10000}},
    {"last of all", {0xF4, 0x8F, 0xBF, 0xBF}, {0xDBFF, 0xDFFF}, {0x10FFFF}},
};

// The source must give the target, and one unit less room must leave both sides alone; a source
// cut short must say so and take nothing.
template <class From, class To, class Function>
void CheckPair(Function convert, const std::vector<From>& from, const std::vector<To>& to) {
    for (const ConversionFlags flags : {strictConversion, lenientConversion}) {
        CHECK(Run<To>(convert, from, flags, to.size()) ==
              Outcome<To>{conversionOK, to, from.size()});
        CHECK(Run<To>(convert, from, flags, to.size() - 1) == Outcome<To>{targetExhausted, {}, 0});
        for (size_t size = 1; size < from.size(); ++size) {
            const std::vector<From> cut(from.data(), from.data() + size);
            CHECK(Run<To>(convert, cut, flags, 8) == Outcome<To>{sourceExhausted, {}, 0});
        }
    }
}

}  // namespace

TEST_CASE("each form converts to each other at every border") {
    for (const auto& c : kSame) {
        CAPTURE(c.what);
        CheckPair(ConvertUTF8toUTF16, c.utf8, c.utf16);
        CheckPair(ConvertUTF8toUTF32, c.utf8, c.utf32);
        CheckPair(ConvertUTF16toUTF8, c.utf16, c.utf8);
        CheckPair(ConvertUTF16toUTF32, c.utf16, c.utf32);
        CheckPair(ConvertUTF32toUTF8, c.utf32, c.utf8);
        CheckPair(ConvertUTF32toUTF16, c.utf32, c.utf16);
        CHECK(isLegalUTF8Sequence(c.utf8.data(), c.utf8.data() + c.utf8.size()));
    }
}

TEST_CASE("malformed UTF-8 stops either mode at the bad character") {
    const struct {
        const char* what;
        Bytes bad;
    } cases[] = {
        {"lone continuation", {0x80}},
        {"overlong of two", {0xC1, 0xBF}},
        {"overlong of three", {0xE0, 0x9F, 0xBF}},
        {"overlong of four", {0xF0, 0x8F, 0xBF, 0xBF}},
        {"surrogate", {0xED, 0xA0, 0x80}},
        {"beyond U+10FFFF", {0xF4, 0x90, 0x80, 0x80}},
        {"lead byte beyond", {0xF5, 0x80, 0x80, 0x80}},
        {"no continuation", {0xC3, 'a'}},
        {"bad third byte", {0xE2, 0x82, 'a'}},
        {"bad fourth byte", {0xF0, 0x9F, 0x98, 'a'}},
        {"old form of five", {0xF8, 0x88, 0x80, 0x80, 0x80}},
        {"old form of six", {0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK_FALSE(isLegalUTF8Sequence(c.bad.data(), c.bad.data() + c.bad.size()));
        Bytes text = {'o', 'k'};
        text.insert(text.end(), c.bad.begin(), c.bad.end());
        for (const ConversionFlags flags : {strictConversion, lenientConversion}) {
            CHECK(Run<UTF32>(ConvertUTF8toUTF32, text, flags, 20) ==
                  Outcome<UTF32>{sourceIllegal, {'o', 'k'}, 2});
            CHECK(Run<UTF16>(ConvertUTF8toUTF16, text, flags, 20) ==
                  Outcome<UTF16>{sourceIllegal, {'o', 'k'}, 2});
        }
    }
    const Bytes none;
    CHECK_FALSE(isLegalUTF8Sequence(none.data(), none.data()));
    const UTF8 five[] = {0xF8, 0x88, 0x80, 0x80, 0x80};
    CHECK_FALSE(isLegalUTF8(five, 5));
    CHECK_FALSE(isLegalUTF8(five, 0));
}

TEST_CASE("strict refuses lone surrogates and values out of range, lenient gets past them") {
    const Wides surrogate32 = {'a', 0xD800, 'b'};
    CHECK(Run<UTF8>(ConvertUTF32toUTF8, surrogate32, strictConversion, 20) ==
          Outcome<UTF8>{sourceIllegal, {'a'}, 1});
    CHECK(Run<UTF16>(ConvertUTF32toUTF16, surrogate32, strictConversion, 20) ==
          Outcome<UTF16>{sourceIllegal, {'a'}, 1});
    CHECK(Run<UTF8>(ConvertUTF32toUTF8, surrogate32, lenientConversion, 20) ==
          Outcome<UTF8>{conversionOK, {'a', 0xED, 0xA0, 0x80, 'b'}, 3});
    CHECK(Run<UTF16>(ConvertUTF32toUTF16, surrogate32, lenientConversion, 20) ==
          Outcome<UTF16>{conversionOK, {'a', 0xFFFD, 'b'}, 3});

    const Wides beyond = {'a', 0x110000, -1, 'b'};
    CHECK(Run<UTF8>(ConvertUTF32toUTF8, beyond, lenientConversion, 20) ==
          Outcome<UTF8>{sourceIllegal, {'a', 0xEF, 0xBF, 0xBD, 0xEF, 0xBF, 0xBD, 'b'}, 4});
    CHECK(Run<UTF16>(ConvertUTF32toUTF16, beyond, lenientConversion, 20) ==
          Outcome<UTF16>{conversionOK, {'a', 0xFFFD, 0xFFFD, 'b'}, 4});
    CHECK(Run<UTF16>(ConvertUTF32toUTF16, beyond, strictConversion, 20).taken == 1);

    for (const UTF16 lone : {UTF16{0xD800}, UTF16{0xDC00}}) {
        const Words surrogate16 = {'a', lone, 'b'};
        CHECK(Run<UTF8>(ConvertUTF16toUTF8, surrogate16, strictConversion, 20) ==
              Outcome<UTF8>{sourceIllegal, {'a'}, 1});
        CHECK(Run<UTF32>(ConvertUTF16toUTF32, surrogate16, lenientConversion, 20) ==
              Outcome<UTF32>{conversionOK, {'a', static_cast<UTF32>(lone), 'b'}, 3});
    }
}
