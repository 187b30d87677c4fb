#include "kernel/OSConsole.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

OSConsole* Console = nullptr;

namespace {

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};

void WriteReport(FILE* stream, const char* fmt, va_list args) __attribute__((format(printf, 2, 0)));

void WriteReport(FILE* stream, const char* fmt, va_list args) {
    const int savedErrno = errno;
    char* formatted = nullptr;
    if (vasprintf(&formatted, fmt, args) < 0) formatted = nullptr;
    const std::unique_ptr<char, FreeText> text(formatted);
    if (text != nullptr) {
        const size_t length = std::strlen(text.get());
        if (length > 0 && text.get()[length - 1] == '\n') text.get()[length - 1] = '\0';
        os_printable(text.get());
        std::fprintf(stream, "%s\n", text.get());
        std::fflush(stream);
    }
    errno = savedErrno;
}

}  // namespace

void os_printable(char* text) {
    for (; *text != '\0'; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        if (byte < 0x20 || byte == 0x7F) *text = '?';
    }
}

void OSConsole::Report(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    vReport(fmt, args);
    va_end(args);
}

void OSConsole::vReport(const char* fmt, va_list args) {
    if (stream_ != nullptr) WriteReport(stream_, fmt, args);
}

void ConsoleReport(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    if (Console != nullptr)
        Console->vReport(fmt, args);
    else
        WriteReport(stderr, fmt, args);
    va_end(args);
}
