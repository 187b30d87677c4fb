// Log.h: the system log. Each entry goes to syslog and to standard error, the web server's log.
#pragma once

// The threshold of the process: errors are written when it is above 2, debug messages above 5.
extern int syslog_level;

// Formats take %m for the text of errno, which stays as it was; since ISO C++ has no %m, such a
// call is written `__extension__ LogError("... %m")`. A final newline is dropped, other control
// characters are written as '?'.
void LogError(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
void LogDebug(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
// Whatever the threshold; `priority` is one of syslog's (LOG_ERR, LOG_INFO, ...).
void LogAlways(int priority, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
