#include "portal/background/BackgroundFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "cgiFramework/WebSession.h"
#include "common/Parse.h"
#include "common/Path.h"
#include "kernel/OSStartup.h"

namespace {

constexpr char kFolder[] = "/Norvane/fifos";
constexpr char kFifoEnd[] = "_out";
// A run that still lives is waited for, and so touched, far more often.
constexpr time_t kLeftoverSeconds = 60;

bool CreateSemaphore(const char* name) {
    sem_t* made = sem_open(name, O_CREAT | O_EXCL, 0600, 0);
    if (made == SEM_FAILED) return false;
    sem_close(made);
    return true;
}

bool CreateProgress(const char* path, int contactId) {
    const int fd = open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) return false;
    const BackgroundProgress begin = {os_clock(), 0, contactId};
    const bool written = write(fd, &begin, sizeof begin) == static_cast<ssize_t>(sizeof begin);
    close(fd);
    return written;
}

// Reads "<session>_<pid>_out".
bool ParseFifoName(const std::string& name, std::string& session, pid_t& pid) {
    const size_t first = name.find('_');
    const size_t second = name.find('_', first + 1);
    if (first == std::string::npos || second == std::string::npos) return false;
    if (name.substr(second) != kFifoEnd) return false;
    session = name.substr(0, first);
    const std::string number = name.substr(first + 1, second - first - 1);
    if (!IsSessionId(session.c_str()) || !IsDigits(number.c_str(), 1, 9)) return false;
    pid = atoi(number.c_str());
    return true;
}

}  // namespace

BackgroundFiles::BackgroundFiles(const char* sessionId, pid_t pid) {
    fifo_.Format("%s/%s_%d%s", kFolder, sessionId, pid, kFifoEnd);
    semaphore_.Format("/prog_%s_%d", sessionId, pid);
    progress_.Format("%s/%s_%d_progress", kFolder, sessionId, pid);
}

// The fifo comes first and goes last: whatever is left behind is found through it.
bool BackgroundFiles::Create(int contactId) const {
    Remove();
    if (mkfifo(RootPath(fifo_.c_str()).c_str(), 0600) == 0 && CreateSemaphore(semaphore_.c_str()) &&
        CreateProgress(RootPath(progress_.c_str()).c_str(), contactId))
        return true;
    Remove();
    return false;
}

void BackgroundFiles::Remove() const {
    sem_unlink(semaphore_.c_str());
    unlink(RootPath(progress_.c_str()).c_str());
    unlink(RootPath(fifo_.c_str()).c_str());
}

bool BackgroundFiles::Exist() const {
    struct stat info {};
    return lstat(RootPath(fifo_.c_str()).c_str(), &info) == 0 && S_ISFIFO(info.st_mode) &&
           info.st_uid == geteuid();
}

void BackgroundFiles::Touch() const {
    utimensat(AT_FDCWD, RootPath(fifo_.c_str()).c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
}

bool BackgroundFiles::ReadTouch(timespec& when) const {
    struct stat info {};
    if (lstat(RootPath(fifo_.c_str()).c_str(), &info) != 0) return false;
    when = info.st_mtim;
    return true;
}

BackgroundProgress* BackgroundFiles::MapProgress() const {
    const int fd = open(RootPath(progress_.c_str()).c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return nullptr;
    void* mapped =
        mmap(nullptr, sizeof(BackgroundProgress), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    return mapped != MAP_FAILED ? static_cast<BackgroundProgress*>(mapped) : nullptr;
}

bool BackgroundFiles::ReadProgress(BackgroundProgress& now) const {
    const int fd = open(RootPath(progress_.c_str()).c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return false;
    const bool whole = read(fd, &now, sizeof now) == static_cast<ssize_t>(sizeof now);
    close(fd);
    return whole;
}

bool RunsThisProgram(pid_t pid) {
    const std::string path = "/proc/" + std::to_string(pid) + "/exe";
    struct stat mine {};
    struct stat its {};
    return stat("/proc/self/exe", &mine) == 0 && stat(path.c_str(), &its) == 0 &&
           mine.st_dev == its.st_dev && mine.st_ino == its.st_ino;
}

void PrepareBackgroundFolder() {
    EnsureFolder(kFolder);
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(RootPath(kFolder).c_str()), closedir);
    if (folder == nullptr) return;
    std::vector<BackgroundFiles> leftovers;
    while (const dirent* entry = readdir(folder.get())) {
        std::string session;
        pid_t pid = 0;
        if (!ParseFifoName(entry->d_name, session, pid) || RunsThisProgram(pid)) continue;
        leftovers.emplace_back(session.c_str(), pid);
    }
    const time_t newest = time(nullptr) - kLeftoverSeconds;
    timespec touched{};
    for (const BackgroundFiles& files : leftovers)
        if (files.Exist() && files.ReadTouch(touched) && touched.tv_sec < newest) files.Remove();
}
