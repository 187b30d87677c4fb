#include "kernel/OSStartup.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "kernel/OSConsole.h"

namespace {

// open() gives the lowest free descriptor, so the gaps fill from 0 upwards.
void OpenStandardDescriptors() {
    for (int fd = 0; fd <= 2; ++fd)
        if (fcntl(fd, F_GETFD) < 0 && errno == EBADF && open("/dev/null", O_RDWR) < 0) return;
}

}  // namespace

void os_startup() {
    OpenStandardDescriptors();
    static OSConsole console;
    Console = &console;
}

int64_t os_clock() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}
