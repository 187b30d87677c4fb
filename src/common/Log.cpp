#include "common/Log.h"

#include <syslog.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "kernel/OSConsole.h"

int syslog_level = 3;

namespace {

constexpr int kErrorsAbove = 2;
constexpr int kDebugAbove = 5;

void Write(int priority, const char* fmt, va_list args) __attribute__((format(printf, 2, 0)));

void Write(int priority, const char* fmt, va_list args) {
    const int savedErrno = errno;
    static bool opened = false;
    if (!opened) openlog("lumora", LOG_PID | LOG_PERROR, LOG_USER);
    opened = true;
    errno = savedErrno;  // for %m
    char* formatted = nullptr;
    if (vasprintf(&formatted, fmt, args) >= 0) {
        const std::unique_ptr<char, void (*)(void*)> text(formatted, std::free);
        const size_t length = std::strlen(formatted);
        if (length > 0 && formatted[length - 1] == '\n') formatted[length - 1] = '\0';
        os_printable(formatted);
        syslog(priority, "%s", formatted);
    }
    errno = savedErrno;
}

}  // namespace

void LogError(const char* fmt, ...) {
    if (syslog_level <= kErrorsAbove) return;
    va_list args;
    va_start(args, fmt);
    Write(LOG_ERR, fmt, args);
    va_end(args);
}

void LogDebug(const char* fmt, ...) {
    if (syslog_level <= kDebugAbove) return;
    va_list args;
    va_start(args, fmt);
    Write(LOG_ERR, fmt, args);
    va_end(args);
}

void LogAlways(int priority, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    Write(priority, fmt, args);
    va_end(args);
}
