#include "common/ThrowText.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>

void ThrowText(const char* fmt, ...) {
    constexpr size_t kBuffers = 4;
    static char buffers[kBuffers][4096];
    static size_t next = 0;

    char* text = buffers[next];
    next = (next + 1) % kBuffers;
    va_list args;
    va_start(args, fmt);
    if (std::vsnprintf(text, sizeof buffers[0], fmt, args) < 0) *text = '\0';
    va_end(args);
    throw static_cast<const char*>(text);
}
