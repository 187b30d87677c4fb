// UStringX.h: UString, the one text type of the system, and its list element.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "kernel/OSList.h"

class OSMemPool;

// A growable, NUL-terminated byte text, UTF-8 by convention, with a cached wide copy.
//
// A string that never held text has no buffer and reads everywhere as "". A buffer never shrinks.
// The length is never stored but measured, so a loop that appends to a long string costs the square
// of its length: collect in a std::string and hand over once. Arguments may point into the string
// itself. When memory runs out, the console gets a report and a character string is thrown.
class UString : public OSListObj {
  public:
    // Where the buffers of all strings come from; null: the heap. To be set before the first string
    // takes a buffer, or not at all.
    static OSMemPool* mempool;

    UString() = default;
    // The copy always owns a buffer, even that of an empty string.
    UString(const UString& from);
    UString(UString&& from) noexcept;  // leaves `from` without a buffer
    UString(const char* text);         // null: no buffer
    UString(const unsigned char* text);
    // From UTF-32; a value beyond U+10FFFF becomes U+FFFD.
    UString(const wchar_t* text);
    ~UString() override;

    // A null text, or a string without a buffer, empties this one, which keeps its capacity.
    UString& operator=(const UString& from);
    UString& operator=(UString&& from) noexcept;
    UString& operator=(const char* text);
    UString& operator=(const unsigned char* text);
    UString& operator=(const wchar_t* text);

    // Gives the text buffer back, and with it the text.
    void Free();

    // Makes room for `n` characters and the terminator and keeps the text.
    void Allocate(int n);
    // The same: it reserves only, and changes neither text nor length.
    void SetLength(int n) { Allocate(n); }
    // The same for the wide copy, in wide characters.
    void wAllocate(int n) const;
    // The capacity that a request for `n` bytes, terminator included, gets.
    static int LengthRound(int n);
    // To no buffers at all, without giving any back: for a string whose buffers another now owns.
    void Init();
    // To be called after writing into the buffer directly: the wide copy is out of date.
    void Dirty() { dirty = true; }

    const char* c_str() const { return buffer != nullptr ? buffer : kEmpty; }  // never null
    operator char*() const { return buffer != nullptr ? buffer : kEmpty; }     // never null
    // The text in UTF-32, up to the first byte that is not UTF-8. Lives until the next change.
    operator wchar_t*() const;
    // The byte at `i`, unchecked; 0 when there is no buffer.
    char operator[](int i) const { return buffer != nullptr ? buffer[i] : '\0'; }
    int GetLength() const;
    bool IsEmpty() const { return buffer == nullptr || *buffer == '\0'; }
    // The text from offset `n` on, inside this string's own buffer; "" at or beyond the end. A
    // negative offset counts as 0.
    char* Mid(int n) const;
    // A string in a list is found by its text.
    bool IsKey(const char* key) override;

    UString& operator+=(const UString& text);
    UString& operator+=(const char* text);  // null appends nothing
    UString& operator+=(char c);
    // Appends `length` bytes, which should hold no NUL: the text ends at the first.
    UString& Append(const char* bytes, size_t length);
    // Appends the ASCII letters of `text` only.
    UString& AddStripped(const char* text);
    // Appends with space, '%' and '&' percent-encoded.
    UString& AppendSafe(const char* text);
    // Appends with space and '%' percent-encoded; '&' passes.
    UString& AppendSafe2(const char* text);

    // These replace the content by an escaped form of `text`; null empties the string.
    // Directory filter value: ( ) * and backslash become a backslash and two hex digits.
    UString& SlashHex(const char* text);
    // The same, but '*' passes, so that a user's wildcard reaches the filter.
    UString& SlashHex2(const char* text);
    // SQL literal: a backslash in front of each ' " and backslash. Safe between quotes, on a
    // connection in utf8mb4 without NO_BACKSLASH_ESCAPES.
    UString& EscapeMySQL(const char* text);

    // Replace the content; answer the number of characters, or -1 (and an empty string) when the
    // arguments cannot be formatted.
    int Format(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    int vFormat(const char* fmt, va_list args) __attribute__((format(printf, 2, 0)));
    // Replaces the content by the next line of `stream`, without its newline. A line longer than
    // the buffer comes in pieces. End of file reads as "": ask the stream.
    UString& fgets(FILE* stream);

    // Replaces the first occurrence; false, and no change, when there is none or `from` is empty.
    bool Replace(const char* from, const char* to);
    // Replaces from the beginning until none is left, also in text that a replacement has made.
    // When `to` holds `from`, which would never end, each occurrence of the given text is replaced
    // once.
    bool ReplaceAll(const char* from, const char* to);
    // Keeps decimal digits only.
    void StripNonNumeric();
    // Removes blanks, tabs, CR and LF at both ends; but a single character keeps what follows it
    // ("a  " stays), as stored values compared with trimmed ones rely on.
    void Trim();

    char* buffer = nullptr;              // the text, or null
    int32_t buffer_size = 0;             // its capacity in bytes, terminator included
    mutable wchar_t* wbuffer = nullptr;  // the wide copy, or null
    mutable int32_t wbuffer_size = 0;    // its capacity in wide characters
    mutable bool dirty = true;           // the text has changed since the wide copy was made

  private:
    static char kEmpty[1];

    void Reserve(size_t length);
    void Assign(const char* bytes, size_t length);
    void AssignWide(const wchar_t* text);
    void Clear();
};

// All comparisons are byte-wise; a plain text must not be null.
bool operator==(const UString& a, const UString& b);
bool operator==(const UString& a, const char* b);
bool operator==(const UString& a, char* b);
bool operator==(const char* a, const UString& b);
bool operator==(char* a, const UString& b);
bool operator!=(const UString& a, const UString& b);
bool operator!=(const UString& a, const char* b);
bool operator!=(const UString& a, char* b);
bool operator!=(const char* a, const UString& b);
bool operator!=(char* a, const UString& b);
bool operator<(const UString& a, const UString& b);
bool operator<(const UString& a, const char* b);
bool operator<(const char* a, const UString& b);
bool operator>(const UString& a, const UString& b);
bool operator>(const UString& a, const char* b);
bool operator>(const char* a, const UString& b);
bool operator<=(const UString& a, const UString& b);
bool operator<=(const UString& a, const char* b);

UString operator+(const char* a, const UString& b);
UString operator+(const UString& a, const char* b);
UString operator+(const UString& a, const UString& b);

// A list element that carries one text.
class UStringListObj : public OSLinkListObj {
  public:
    UStringListObj() = default;
    explicit UStringListObj(const char* text) : s(text) {}
    bool IsKey(const char* key) override { return s.IsKey(key); }

    UString s;
};
