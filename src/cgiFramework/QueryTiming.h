// QueryTiming.h: the one place where queries go to the server, and the log of how long they take.
#pragma once

#include <cstddef>

struct st_mysql;

// From here on every query of this process is written to the end of that file: the wall-clock time
// that its call took, as "SECONDS.MICROSECONDS sec", and on the next lines its text. The file is
// made when it is missing, readable for this account of the system alone. One that cannot be opened
// is reported on the console, and queries run as before.
void OpenBenchmarkLog(const char* path);

// Runs the query and answers what the client library's call answers.
[[nodiscard]] int RunQuery(st_mysql* connection, const char* text, size_t length);
