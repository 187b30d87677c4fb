#include "common/UStringX.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <functional>

#include "common/Unicode.h"
#include "kernel/OSConsole.h"
#include "kernel/OSMemPool.h"

OSMemPool* UString::mempool = nullptr;
char UString::kEmpty[1] = {'\0'};

namespace {

void GiveBlock(void* block) {
    if (UString::mempool != nullptr)
        UString::mempool->Free(block);
    else
        std::free(block);
}

// A block of `bytes` with the first `kept` bytes of `old`, which is given back; null when there is
// no memory, and then `old` stays as it was.
void* GrowBlock(void* old, size_t kept, size_t bytes) {
    if (UString::mempool == nullptr) return std::realloc(old, bytes);
    void* grown = UString::mempool->Allocate(bytes);
    if (grown != nullptr && old != nullptr) {
        std::memcpy(grown, old, kept);
        UString::mempool->Free(old);
    }
    return grown;
}

constexpr char kOutOfMemory[] = "UString: out of memory";

[[noreturn]] void OutOfMemory(int size) {
    ConsoleReport("UStringX::Allocate - Out Of memory for size %d", size);
    throw static_cast<const char*>(kOutOfMemory);
}

[[noreturn]] void OutOfWideMemory(int size) {
    ConsoleReport("UStringX::wAllocate - Out Of memory for size %d", size);
    throw static_cast<const char*>(kOutOfMemory);
}

}  // namespace

UString::UString(const UString& from) : OSListObj(from) {
    Assign(from.c_str(), std::strlen(from.c_str()));
}

UString::UString(UString&& from) noexcept
    : OSListObj(from),
      buffer(from.buffer),
      buffer_size(from.buffer_size),
      wbuffer(from.wbuffer),
      wbuffer_size(from.wbuffer_size),
      dirty(from.dirty) {
    from.Init();
}

UString::UString(const char* text) {
    if (text != nullptr) Assign(text, std::strlen(text));
}

UString::UString(const unsigned char* text) : UString(reinterpret_cast<const char*>(text)) {}

UString::UString(const wchar_t* text) {
    if (text != nullptr) AssignWide(text);
}

UString::~UString() {
    if (wbuffer != nullptr) GiveBlock(wbuffer);
    if (buffer != nullptr) GiveBlock(buffer);
}

UString& UString::operator=(const UString& from) {
    if (this == &from) return *this;
    return *this = static_cast<const char*>(from.buffer);
}

UString& UString::operator=(UString&& from) noexcept {
    if (this == &from) return *this;
    if (wbuffer != nullptr) GiveBlock(wbuffer);
    if (buffer != nullptr) GiveBlock(buffer);
    buffer = from.buffer;
    buffer_size = from.buffer_size;
    wbuffer = from.wbuffer;
    wbuffer_size = from.wbuffer_size;
    dirty = from.dirty;
    from.Init();
    return *this;
}

UString& UString::operator=(const char* text) {
    if (text == nullptr)
        Clear();
    else
        Assign(text, std::strlen(text));
    return *this;
}

UString& UString::operator=(const unsigned char* text) {
    return *this = reinterpret_cast<const char*>(text);
}

UString& UString::operator=(const wchar_t* text) {
    if (text == nullptr)
        Clear();
    else
        AssignWide(text);
    return *this;
}

void UString::Free() {
    if (buffer != nullptr) GiveBlock(buffer);
    buffer = nullptr;
    Dirty();
}

int UString::LengthRound(int n) {
    for (const int step : {64, 128, 256, 1024, 4096, 8192})
        if (n <= step) return step;
    return n;
}

void UString::Allocate(int n) {
    Reserve(n > 0 ? static_cast<size_t>(n) : 0);
}

void UString::Reserve(size_t length) {
    if (length >= INT_MAX) OutOfMemory(INT_MAX);
    const int needed = static_cast<int>(length) + 1;
    if (buffer != nullptr && buffer_size >= needed) return;
    const int rounded = LengthRound(needed);
    const bool fresh = buffer == nullptr;
    void* grown = GrowBlock(buffer, fresh ? 0 : static_cast<size_t>(buffer_size),
                            static_cast<size_t>(rounded));
    if (grown == nullptr) OutOfMemory(rounded);
    buffer = static_cast<char*>(grown);
    buffer_size = rounded;
    if (fresh) *buffer = '\0';
}

void UString::wAllocate(int n) const {
    if (n == INT_MAX) OutOfWideMemory(n);
    const int needed = n > 0 ? n + 1 : 1;
    if (wbuffer != nullptr && wbuffer_size >= needed) return;
    const int rounded = LengthRound(needed);
    const bool fresh = wbuffer == nullptr;
    void* grown =
        GrowBlock(wbuffer, fresh ? 0 : static_cast<size_t>(wbuffer_size) * sizeof(wchar_t),
                  static_cast<size_t>(rounded) * sizeof(wchar_t));
    if (grown == nullptr) OutOfWideMemory(rounded);
    wbuffer = static_cast<wchar_t*>(grown);
    wbuffer_size = rounded;
    if (fresh) *wbuffer = L'\0';
}

void UString::Init() {
    buffer = nullptr;
    buffer_size = 0;
    wbuffer = nullptr;
    wbuffer_size = 0;
    Dirty();
}

void UString::Clear() {
    if (buffer != nullptr) *buffer = '\0';
    Dirty();
}

// `bytes` may lie in this string's own buffer: that is then big enough and does not move.
void UString::Assign(const char* bytes, size_t length) {
    Reserve(length);
    std::memmove(buffer, bytes, length);
    buffer[length] = '\0';
    Dirty();
}

void UString::AssignWide(const wchar_t* text) {
    const size_t length = std::wcslen(text);
    if (length > INT_MAX / 4) OutOfMemory(INT_MAX);
    Reserve(4 * length);
    auto* target = reinterpret_cast<UTF8*>(buffer);
    ConvertUTF32toUTF8(&text, text + length + 1, &target, target + buffer_size, lenientConversion);
    Dirty();
}

UString::operator wchar_t*() const {
    static wchar_t empty[1] = {L'\0'};
    if (IsEmpty()) return empty;
    if (wbuffer != nullptr && !dirty) return wbuffer;
    const size_t length = std::strlen(buffer);
    wAllocate(static_cast<int>(length));
    const auto* source = reinterpret_cast<const UTF8*>(buffer);
    UTF32* target = wbuffer;
    ConvertUTF8toUTF32(&source, source + length, &target, wbuffer + length, lenientConversion);
    // Always ours: the conversion stops early at malformed text.
    *target = L'\0';
    dirty = false;
    return wbuffer;
}

int UString::GetLength() const {
    return static_cast<int>(std::strlen(c_str()));
}

char* UString::Mid(int n) const {
    if (n >= GetLength()) return kEmpty;
    return buffer + (n > 0 ? n : 0);
}

bool UString::IsKey(const char* key) {
    return key != nullptr && *this == key;
}

UString& UString::operator+=(const UString& text) {
    return *this += text.c_str();
}

UString& UString::operator+=(const char* text) {
    if (text == nullptr) {
        Dirty();
        return *this;
    }
    return Append(text, std::strlen(text));
}

UString& UString::operator+=(char c) {
    return Append(&c, 1);
}

UString& UString::Append(const char* bytes, size_t length) {
    const size_t before = std::strlen(c_str());
    // Text of our own moves with the buffer when that grows.
    const bool own = buffer != nullptr && std::greater_equal<>()(bytes, buffer) &&
                     std::less<>()(bytes, buffer + buffer_size);
    const size_t offset = own ? static_cast<size_t>(bytes - buffer) : 0;
    Reserve(before + length);
    std::memmove(buffer + before, own ? buffer + offset : bytes, length);
    buffer[before + length] = '\0';
    Dirty();
    return *this;
}
