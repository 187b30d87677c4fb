#include "cgiFramework/QueryTiming.h"

#include <fcntl.h>
#include <mysql.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "common/Path.h"
#include "kernel/OSConsole.h"

namespace {

constexpr long kMicrosPerSecond = 1'000'000;

FILE* benchmarkLog = nullptr;

}  // namespace

void OpenBenchmarkLog(const char* path) {
    if (benchmarkLog != nullptr) return;
    const int fd =
        open(RootPath(path).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd >= 0) benchmarkLog = fdopen(fd, "a");
    if (benchmarkLog == nullptr)
        ConsoleReport("Cannot open the benchmark log %s: %s\n", path, strerror(errno));
}

int RunQuery(st_mysql* connection, const char* text, size_t length) {
    if (benchmarkLog == nullptr) return mysql_real_query(connection, text, length);
    timeval begin{};
    timeval end{};
    gettimeofday(&begin, nullptr);
    const int result = mysql_real_query(connection, text, length);
    gettimeofday(&end, nullptr);
    long seconds = end.tv_sec - begin.tv_sec;
    long micros = end.tv_usec - begin.tv_usec;
    if (micros < 0) {
        micros += kMicrosPerSecond;
        --seconds;
    }
    // At once, and in one piece: other processes write to the same file.
    fprintf(benchmarkLog, "%ld.%06d sec\n%s\n", seconds, static_cast<int>(micros), text);
    fflush(benchmarkLog);
    return result;
}
