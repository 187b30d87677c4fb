// ThrowText.h: how the upper layers fail: they throw a character string for the page to show.
#pragma once

// Throws the formatted text, cut at 4095 bytes, as a `const char*`. It lives in one of a few static
// buffers that are used in turn, so it outlives the unwinding and the next failures, not dozens.
// An argument may be an earlier thrown text.
[[noreturn]] void ThrowText(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
