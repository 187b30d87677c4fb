// The operations of UString that work on what the text says: escapers, formatting, editing.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "common/Parse.h"
#include "common/UStringX.h"

namespace {

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

size_t CountOf(const char* text, const char* special) {
    size_t count = 0;
    for (text += std::strcspn(text, special); *text != '\0'; text += std::strcspn(text, special)) {
        ++count;
        ++text;
    }
    return count;
}

// The text with each special character as `prefix` and two hexadecimal digits.
std::string HexEscaped(const char* text, const char* special, char prefix) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(std::strlen(text) + 2 * CountOf(text, special));
    for (; *text != '\0'; ++text) {
        if (std::strchr(special, *text) == nullptr) {
            out += *text;
            continue;
        }
        const auto byte = static_cast<unsigned char>(*text);
        out += prefix;
        out += kDigits[byte >> 4];
        out += kDigits[byte & 0xF];
    }
    return out;
}

}  // namespace

UString& UString::AddStripped(const char* text) {
    std::string letters;
    for (; text != nullptr && *text != '\0'; ++text)
        if (IsLetter(*text)) letters += *text;
    return Append(letters.data(), letters.size());
}

UString& UString::AppendSafe(const char* text) {
    return *this += HexEscaped(text != nullptr ? text : "", " %&", '%').c_str();
}

UString& UString::AppendSafe2(const char* text) {
    return *this += HexEscaped(text != nullptr ? text : "", " %", '%').c_str();
}

UString& UString::SlashHex(const char* text) {
    if (text == nullptr) return *this = text;
    return *this = HexEscaped(text, "()*\\", '\\').c_str();
}

UString& UString::SlashHex2(const char* text) {
    if (text == nullptr) return *this = text;
    return *this = HexEscaped(text, "()\\", '\\').c_str();
}

UString& UString::EscapeMySQL(const char* text) {
    if (text == nullptr) return *this = text;
    static const char kSpecial[] = "'\"\\";
    std::string out;
    out.reserve(std::strlen(text) + CountOf(text, kSpecial));
    for (; *text != '\0'; ++text) {
        if (std::strchr(kSpecial, *text) != nullptr) out += '\\';
        out += *text;
    }
    return *this = out.c_str();
}

int UString::Format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const int length = vFormat(fmt, args);
    va_end(args);
    return length;
}

int UString::vFormat(const char* fmt, va_list args) {
    // Formatted apart, since the arguments may be text of this string.
    char* formatted = nullptr;
    const int length = vasprintf(&formatted, fmt, args);
    if (length < 0) {
        Clear();
        return -1;
    }
    const std::unique_ptr<char, void (*)(void*)> text(formatted, std::free);
    Reserve(static_cast<size_t>(length) + 10);
    Assign(formatted, static_cast<size_t>(length));
    return length;
}

UString& UString::fgets(FILE* stream) {
    Reserve(512);
    // At end of file the C library leaves the buffer alone, and the last line would come again.
    *buffer = '\0';
    if (::fgets(buffer, buffer_size, stream) == nullptr) *buffer = '\0';
    buffer[std::strcspn(buffer, "\n")] = '\0';
    Dirty();
    return *this;
}

bool UString::Replace(const char* from, const char* to) {
    if (from == nullptr || *from == '\0') return false;
    const char* at = std::strstr(c_str(), from);
    if (at == nullptr) return false;
    std::string tail = to != nullptr ? to : "";
    tail += at + std::strlen(from);
    buffer[at - buffer] = '\0';
    Append(tail.data(), tail.size());
    return true;
}

bool UString::ReplaceAll(const char* from, const char* to) {
    if (from == nullptr || *from == '\0' || std::strstr(c_str(), from) == nullptr) return false;
    const std::string pattern = from;
    const std::string with = to != nullptr ? to : "";
    const bool rescan = with.find(pattern) == std::string::npos;
    const std::string reversed(with.rbegin(), with.rend());

    // The text moves byte by byte from the end of `pending` (which is reversed) to `out`; a
    // replacement goes back to `pending`, and so may complete an occurrence that began before it.
    // The first to be complete is the leftmost, just as if each search began at the front.
    const std::string text = c_str();
    std::string pending(text.rbegin(), text.rend());
    std::string out;
    size_t settled = 0;  // of `out`: what no further occurrence may begin in
    while (!pending.empty()) {
        out += pending.back();
        pending.pop_back();
        if (out.size() - settled < pattern.size() || !out.ends_with(pattern)) continue;
        out.resize(out.size() - pattern.size());
        if (rescan) {
            pending += reversed;
        } else {
            out += with;
            settled = out.size();
        }
    }
    Assign(out.data(), out.size());
    return true;
}

void UString::StripNonNumeric() {
    if (buffer == nullptr) return;
    char* out = buffer;
    for (const char* in = buffer; *in != '\0'; ++in)
        if (IsDigit(*in)) *out++ = *in;
    *out = '\0';
    Dirty();
}

void UString::Trim() {
    if (buffer == nullptr) return;
    const char* start = buffer;
    while (IsSpace(*start))
        ++start;
    const size_t length = std::strlen(start);
    size_t kept = length;
    while (kept > 1 && IsSpace(start[kept - 1]))
        --kept;
    if (kept == 1) kept = length;
    Assign(start, kept);
}
