#include "portal/background/BackgroundJob.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>

#include "cgiFramework/WebRender.h"
#include "common/Log.h"
#include "common/Parse.h"
#include "common/Path.h"
#include "kernel/OSStartup.h"
#include "portal/background/BackgroundRender.h"
#include "portal/background/MoveBytes.h"
#include "portal/context/PortalContext.h"

namespace {

// How often a waiting request looks whether the process still lives, and tells it that it waits.
constexpr int kSliceMs = 200;
constexpr int kCancelMs = 5000;
constexpr int kCancelSliceMs = 20;
constexpr int kPipeSize = 256 << 10;

class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() { Close(); }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    operator int() const { return fd_; }
    void Close() {
        if (fd_ >= 0) close(fd_);
        fd_ = -1;
    }

  private:
    int fd_;
};

// Forks with SIGUSR1 held back in the new process.
pid_t ForkHoldingCancel() {
    sigset_t cancel;
    sigset_t before;
    sigemptyset(&cancel);
    sigaddset(&cancel, SIGUSR1);
    sigprocmask(SIG_BLOCK, &cancel, &before);
    const pid_t pid = fork();
    if (pid != 0) sigprocmask(SIG_SETMASK, &before, nullptr);
    return pid;
}

bool AwaitPost(sem_t* sem, int milliseconds) {
    timespec until{};
    clock_gettime(CLOCK_MONOTONIC, &until);
    const int64_t nanoseconds = until.tv_nsec + int64_t{milliseconds} * 1'000'000;
    until.tv_sec += nanoseconds / 1'000'000'000;
    until.tv_nsec = nanoseconds % 1'000'000'000;
    int result = 0;
    do
        result = sem_clockwait(sem, CLOCK_MONOTONIC, &until);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

sem_t* OpenSemaphore(const BackgroundFiles& files) {
    sem_t* sem = sem_open(files.semaphore().c_str(), 0);
    return sem != SEM_FAILED ? sem : nullptr;
}

// Waits for the fifo's first bytes; false when none come, because nobody is left who could write
// any.
template <class StillComes>
bool AwaitBytes(int fifo, StillComes stillComes) {
    pollfd ready = {fifo, POLLIN, 0};
    while (poll(&ready, 1, kSliceMs) <= 0)
        if (!stillComes()) return false;
    return (ready.revents & POLLIN) != 0;
}

}  // namespace

BackgroundJob::BackgroundJob(const BackgroundFiles& files, pid_t pid, bool isChild)
    : files_(files), pid_(pid), isChild_(isChild), sem_(OpenSemaphore(files)) {}

BackgroundJob::~BackgroundJob() {
    if (sem_ != nullptr) sem_close(sem_);
}

std::unique_ptr<BackgroundJob> BackgroundJob::Start(PortalContext& ctx) {
    if (ctx.session_id.IsEmpty()) return nullptr;
    PrepareBackgroundFolder();
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return nullptr;
    FileDescriptor hold(ends[0]);
    FileDescriptor release(ends[1]);
    ctx.CloseLDAPSession();  // two processes cannot share it
    const pid_t pid = ForkHoldingCancel();
    if (pid == 0) {
        release.Close();
        EnterBackground(ctx, hold);
        return nullptr;
    }
    if (pid < 0) {
        __extension__ LogError("BackgroundJob: fork: %m");
        return nullptr;
    }
    const BackgroundFiles files(ctx.session_id.c_str(), pid);
    if (!files.Create(ctx.contactId) || write(release, "", 1) != 1) {
        __extension__ LogError("BackgroundJob: %s: %m", files.fifo().c_str());
        release.Close();
        waitpid(pid, nullptr, 0);
        files.Remove();
        return nullptr;
    }
    ctx.LeaveSQLSession();
    return std::unique_ptr<BackgroundJob>(new BackgroundJob(files, pid, /*isChild=*/true));
}

std::unique_ptr<BackgroundJob> BackgroundJob::Find(PortalContext& ctx, const char* queryId) {
    // A session may have been another user's when the job was started.
    if (!ctx.HasOwnSession() || !IsDigits(queryId, 1, 9)) return nullptr;
    const pid_t pid = atoi(queryId);
    const BackgroundFiles files(ctx.session_id.c_str(), pid);
    BackgroundProgress progress;
    if (pid <= 1 || !files.Exist() || !files.ReadProgress(progress)) return nullptr;
    if (progress.contactId != ctx.contactId) return nullptr;
    if (RunsThisProgram(pid))
        return std::unique_ptr<BackgroundJob>(new BackgroundJob(files, pid, /*isChild=*/false));
    files.Remove();
    return nullptr;
}

bool BackgroundJob::IsAlive() {
    return isChild_ ? waitpid(pid_, nullptr, WNOHANG) == 0 : RunsThisProgram(pid_);
}

void BackgroundJob::ReadProgress(int64_t& seconds, uint64_t& rows) const {
    BackgroundProgress progress;
    const bool known = files_.ReadProgress(progress);
    seconds = known ? (os_clock() - progress.started) / 1000 : 0;
    rows = known ? progress.rows.load() : 0;
}

BackgroundJob::State BackgroundJob::Wait(int milliseconds) {
    const int64_t end = os_clock() + milliseconds;
    for (;;) {
        if (sem_ == nullptr) return kEnded;
        files_.Touch();
        const int64_t left = milliseconds == kNoLimit ? kSliceMs : end - os_clock();
        const int slice = static_cast<int>(std::clamp<int64_t>(left, 0, kSliceMs));
        if (AwaitPost(sem_, slice)) return kReady;
        if (!IsAlive()) break;
        if (left <= 0) return kRunning;
    }
    // It may have become ready, and given up, since.
    files_.Remove();
    return kEnded;
}

void BackgroundJob::GiveBack() {
    sem_post(sem_);
}

bool BackgroundJob::HandOver(WebRender& out) {
    const FileDescriptor fifo(
        open(RootPath(files_.fifo().c_str()).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (fifo < 0) return false;
    fcntl(fifo, F_SETPIPE_SZ, kPipeSize);
    const bool began = AwaitBytes(fifo, [this] { return IsAlive(); });
    ssize_t moved = 0;
    if (began) {
        fcntl(fifo, F_SETFL, 0);  // from here on it waits for more
        while ((moved = MoveBytes(fifo, nullptr, out)) > 0 && !out.Closed()) {
        }
    }
    // There may be nobody left to show anything to; then the process notices as well.
    if (moved != 0) return true;
    // At the end of the fifo its process ends too, and has cleaned up, unless it was killed.
    if (isChild_) waitpid(pid_, nullptr, 0);
    files_.Remove();
    return began;
}

bool BackgroundJob::Cancel() {
    if (kill(pid_, SIGUSR1) != 0) return false;
    for (int waited = 0; waited < kCancelMs && IsAlive(); waited += kCancelSliceMs)
        poll(nullptr, 0, kCancelSliceMs);
    return true;
}
