#include "portal/background/BackgroundRender.h"

#include <fcntl.h>
#include <mysql.h>
#include <pthread.h>
#include <semaphore.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "cgiFramework/WebPage.h"
#include "common/Log.h"
#include "common/Path.h"
#include "common/ThrowText.h"
#include "kernel/OSStartup.h"
#include "portal/background/BackgroundFiles.h"
#include "portal/context/ManagerContext.h"

ManagerContext* current_context = nullptr;

namespace {

constexpr int kOpenSeconds = 30;
constexpr int kErrorPageSeconds = 10;
constexpr int64_t kForsakenMs = 25'000;

// What the watcher needs, apart from the context, which the main thread is using all the while.
struct Watched {
    BackgroundFiles files;
    UString serverAddress;
    UString user;
    UString password;
    UString db;
    unsigned long mysqlThread = 0;  // 0: there is no connection
};

Watched* watched = nullptr;
BackgroundProgress* progress = nullptr;
std::atomic<bool> hasOutput = false;
std::atomic<bool> givenUp = false;

// SIGALRM ends a blocking open while this lives.
class OpenTimer {
  public:
    explicit OpenTimer(int seconds) : armed_(Timeout(seconds, &old_) == 0) {}
    ~OpenTimer() {
        if (!armed_) return;
        alarm(0);  // first: the former action may be the one that ends the process
        if (sigaction(SIGALRM, &old_, nullptr) != 0) __extension__ LogError("sigaction: %m");
    }
    OpenTimer(const OpenTimer&) = delete;
    OpenTimer& operator=(const OpenTimer&) = delete;
    bool IsArmed() const { return armed_; }

  private:
    struct sigaction old_ {};
    bool armed_;
};

BackgroundFiles FilesOf(const ManagerContext& ctx) {
    return BackgroundFiles(ctx.session_id.c_str(), getpid());
}

void CloseSemaphore(PortalContext& ctx) {
    sem_close(ctx.sem);
    ctx.sem = nullptr;
}

// Once the report is given up, the main thread, whose query breaks off, has nothing more to do: the
// watcher ends the process in a moment.
void StopIfGivenUp() {
    while (givenUp)
        pause();
}

// Standard input and output are the web server's, which waits for them to be closed. Standard error
// stays its log.
void LeaveWebServer() {
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (null < 0 || dup2(null, STDIN_FILENO) < 0 || dup2(null, STDOUT_FILENO) < 0) _exit(1);
    close(null);
    setsid();
}

void AwaitRelease(int release) {
    char byte = 0;
    ssize_t got = 0;
    do
        got = read(release, &byte, 1);
    while (got < 0 && errno == EINTR);
    if (got != 1) _exit(1);
}

// Tells a touch of the fifo by its time stamp and measures with a clock of its own, so that setting
// the system's clock forsakes no report.
class Patience {
  public:
    bool IsOver(const BackgroundFiles& files) {
        timespec touched{};
        if (!files.ReadTouch(touched)) return true;
        if (touched.tv_sec != last_.tv_sec || touched.tv_nsec != last_.tv_nsec) {
            last_ = touched;
            since_ = os_clock();
        }
        return os_clock() - since_ > kForsakenMs;
    }

  private:
    timespec last_{};
    int64_t since_ = os_clock();
};

// Ends the process when it is told to, or when nobody waits for its page any more. Once the page
// goes out, its reader is the one who waits.
void* Watch(void*) {
    sigset_t cancel;
    sigemptyset(&cancel);
    sigaddset(&cancel, SIGUSR1);
    Patience patience;
    const timespec pause = {1, 0};
    while (sigtimedwait(&cancel, nullptr, &pause) != SIGUSR1)
        if (!hasOutput && patience.IsOver(watched->files)) break;
    abort_handler(SIGUSR1);
    _exit(1);
}

void StartWatcher(PortalContext& ctx, const BackgroundFiles& files) {
    // It lives as long as the process.
    watched = std::make_unique<Watched>(Watched{files, ctx.GetSetting("serverAddress"),
                                                ctx.GetSetting("user"), ctx.GetSetting("password"),
                                                ctx.GetSetting("db")})
                  .release();
    if (ctx.sql_session != nullptr)
        watched->mysqlThread = mysql_thread_id(ctx.sql_session->connection());
    // Signals other than the watcher's own are the main thread's, which blocks on some of them.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread{};
    const int error = pthread_create(&thread, nullptr, Watch, nullptr);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (error == 0) {
        pthread_detach(thread);
        return;
    }
    files.Remove();
    _exit(1);
}

void KillQuery(const Watched& of) {
    try {
        const SQLSession second(SQLAddress{of.serverAddress.c_str(), of.user.c_str(),
                                           of.password.c_str(), of.db.c_str()});
        if (mysql_kill(second.connection(), of.mysqlThread) == 0)
            LogAlways(LOG_INFO, "Abort - killed MySQL thread %lu\n", of.mysqlThread);
        else
            LogAlways(LOG_ERR, "Abort - couldn't kill MySQL thread %lu - %s\n", of.mysqlThread,
                      mysql_error(second.connection()));
    } catch (const char* message) {
        LogAlways(LOG_ERR, "Abort - couldn't kill MySQL thread %lu - %s\n", of.mysqlThread,
                  message);
    }
}

}  // namespace

int Timeout(int seconds, struct sigaction* old) {
    struct sigaction action {};
    action.sa_handler = open_timeout;
    if (sigprocmask(SIG_BLOCK, nullptr, &action.sa_mask) != 0) {
        __extension__ LogError("sigprocmask: %m");
        return 1;
    }
    if (sigaction(SIGALRM, &action, old) != 0) {
        __extension__ LogError("sigaction: %m");
        return 1;
    }
    alarm(static_cast<unsigned>(seconds));
    return 0;
}

void open_timeout(int) {
    const int savedErrno = errno;
    LogError("open_timeout");
    errno = savedErrno;
}

void abort_handler(int sig) {
    LogDebug("abort_handler: sig=%d", sig);
    if (current_context == nullptr || watched == nullptr) return;
    givenUp = true;
    const BackgroundFiles& files = watched->files;
    if (unlink(RootPath(files.fifo().c_str()).c_str()) != 0)
        LogAlways(LOG_ERR, "Abort - could not remove fifo %s errno %d\n", files.fifo().c_str(),
                  errno);
    else
        LogAlways(LOG_INFO, "Abort - removed fifo %s\n", files.fifo().c_str());
    files.Remove();
    if (watched->mysqlThread == 0) {
        givenUp = false;
        return;
    }
    KillQuery(*watched);
    _exit(1);
}

void EnterBackground(PortalContext& ctx, int release) {
    LeaveWebServer();
    signal(SIGUSR1, SIG_DFL);
    ctx.background = true;
    AwaitRelease(release);
    const BackgroundFiles files(ctx.session_id.c_str(), getpid());
    sem_t* sem = sem_open(files.semaphore().c_str(), 0);
    if (sem != SEM_FAILED) ctx.sem = sem;
    progress = files.MapProgress();
    StartWatcher(ctx, files);
}

void CountBackgroundRows(uint64_t rows) {
    if (progress != nullptr) progress->rows.store(rows, std::memory_order_relaxed);
}

void BeginBackgroundOutput(ManagerContext& ctx) {
    StopIfGivenUp();
    LogDebug("background process ready to Render");
    const BackgroundFiles files = FilesOf(ctx);
    if (ctx.sem == nullptr) throw "semaphore not available";
    if (sem_post(ctx.sem) != 0) throw "error posting semaphore: %m";
    CloseSemaphore(ctx);

    LogAlways(LOG_INFO, "opening fifo for write ...");
    const OpenTimer timer(kOpenSeconds);
    if (timer.IsArmed()) {
        const int fd = open(RootPath(files.fifo().c_str()).c_str(), O_WRONLY | O_CLOEXEC);
        if (fd < 0) ThrowText("error opening %s for write: %%m", files.fifo().c_str());
        const int moved = dup2(fd, STDOUT_FILENO);
        close(fd);
        if (moved < 0) throw "failed to dup2 fifo to stdout: %m";
        hasOutput = true;
    }
    LogDebug("background process rendering to fifos");
}

bool HasBackgroundOutput() {
    return hasOutput;
}

void OfferErrorPage(ManagerContext& ctx, WebPage& page) {
    StopIfGivenUp();
    if (ctx.sem == nullptr) {
        LogError("semaphore not available");
    } else {
        if (sem_post(ctx.sem) != 0)
            __extension__ LogError("failed to post semaphore %m");
        else
            LogDebug("semaphore posted");
        CloseSemaphore(ctx);
    }
    const OpenTimer timer(kErrorPageSeconds);
    if (!timer.IsArmed()) return;
    const BackgroundFiles files = FilesOf(ctx);
    FILE* stream = fopen(RootPath(files.fifo().c_str()).c_str(), "we");
    if (stream == nullptr) {
        __extension__ LogError("failed to open %s for write %m", files.fifo().c_str());
        return;
    }
    hasOutput = true;
    LogDebug("%s open for write", files.fifo().c_str());
    FileWebRender out(stream);
    page.Render(ctx, &out);
    fclose(stream);
}

void EndBackground(ManagerContext& ctx) {
    StopIfGivenUp();
    const BackgroundFiles files = FilesOf(ctx);
    const char* semaphore = files.semaphore().c_str();
    if (sem_unlink(semaphore) != 0)
        __extension__ LogError("failed to unlink semaphore %s %m", semaphore);
    else
        LogDebug("semaphore %s deleted", semaphore);
    const char* fifo = files.fifo().c_str();
    if (unlink(RootPath(fifo).c_str()) != 0)
        __extension__ LogError("failed to unlink fifo %s %m", fifo);
    else
        LogDebug("fifo %s deleted", fifo);
    files.Remove();
}
