#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>

#include "cgiFramework/WebSession.h"

namespace {

constexpr int kLockSeconds = 10;

volatile sig_atomic_t flock_timeout = 0;

void OnTimeout(int) {
    flock_timeout = 1;
}

// Retries a system call that a signal interrupted.
template <class Call>
auto Retry(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

void SetTimer(time_t seconds, suseconds_t interval) {
    itimerval timer{};
    timer.it_value.tv_sec = seconds;
    timer.it_interval.tv_usec = interval;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

LockedFile::LockedFile(const char* path, const char* mode) {
    const bool reading = mode[0] == 'r';
    const int flags = reading ? O_RDONLY : O_WRONLY | O_APPEND;
    fd_ = Retry([&] { return open(path, flags | O_CLOEXEC | O_NOFOLLOW); });
    if (fd_ < 0) return;
    Lock();
    if (!reading) {
        if (Retry([&] { return ftruncate(fd_, 0); }) != 0) Fail("LockedFile: ftruncate() failed");
        if (Retry([&] { return lseek(fd_, 0, SEEK_SET); }) < 0) Fail("LockedFile: lseek() failed");
    }
    do {
        errno = 0;
        stream_ = fdopen(fd_, mode);
    } while (stream_ == nullptr && errno == EINTR);
    if (stream_ == nullptr) Fail("LockedFile: fdopen() failed");
}

LockedFile::~LockedFile() {
    if (stream_ != nullptr) fclose(stream_);
}

void LockedFile::Fail(const char* text) {
    close(fd_);
    fd_ = -1;
    throw text;
}

void LockedFile::Lock() {
    // Nobody else holds most files: then neither timer nor handler is needed.
    if (flock(fd_, LOCK_EX | LOCK_NB) == 0) return;
    flock_timeout = 0;
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = OnTimeout;
    sigset_t mask;
    if (sigprocmask(SIG_BLOCK, nullptr, &mask) != 0) Fail("LockedFile: sigprocmask() failed");
    action.sa_mask = mask;
    if (sigaction(SIGALRM, &action, &before) != 0) Fail("LockedFile: sigaction() failed");
    sigset_t alarmOnly;
    sigemptyset(&alarmOnly);
    sigaddset(&alarmOnly, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &alarmOnly, nullptr);
    // The timer repeats after its first ring: one that comes between the test of the flag and the
    // call is followed by another.
    SetTimer(kLockSeconds, 20000);
    int result = 0;
    int error = 0;
    do {
        result = flock(fd_, LOCK_EX);
        error = errno;
    } while (result != 0 && error == EINTR && flock_timeout == 0);
    SetTimer(0, 0);
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    if (result == 0) return;
    Fail(error == EINTR ? "LockedFile: flock(LOCK_EX) timeout"
                        : "LockedFile: flock(LOCK_EX) failed");
}
