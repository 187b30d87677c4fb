// OSConsole.h: the process console, where every layer reports what an operator should know.
#pragma once

#include <cstdarg>
#include <cstdio>

class OSConsole {
  public:
    // The console borrows `stream`, which must outlive it; null drops what is reported.
    explicit OSConsole(FILE* stream = nullptr) : stream_(stream) {}

    void SetStream(FILE* stream) { stream_ = stream; }

    // Writes one line. A text that does not end in a newline gets one; control characters inside it
    // are written as '?', so that reported data can neither forge a line nor drive a terminal.
    // errno is left as it was.
    void Report(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void vReport(const char* fmt, va_list args) __attribute__((format(printf, 2, 0)));

  private:
    FILE* stream_;
};

// The console of this process: null before os_startup and at the very end of `main`.
extern OSConsole* Console;

// Reports on `Console`, or on standard error when there is no console.
void ConsoleReport(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

// Replaces each ASCII control character of `text` by '?', in place.
void os_printable(char* text);
