#include "portal/background/BackgroundFiles.h"

#include <doctest/doctest.h>
#include <fcntl.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "common/Path.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

std::set<std::string> Fifos(const TestRequest& request) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(request.root / "Norvane/fifos"))
        names.insert(entry.path().filename().string());
    return names;
}

bool HasSemaphore(const BackgroundFiles& files) {
    sem_t* sem = sem_open(files.semaphore().c_str(), 0);
    if (sem == SEM_FAILED) return false;
    sem_close(sem);
    return true;
}

void MakeOld(const BackgroundFiles& files) {
    const timespec longAgo[2] = {{1, 0}, {1, 0}};
    utimensat(AT_FDCWD, RootPath(files.fifo().c_str()).c_str(), longAgo, 0);
}

}  // namespace

TEST_CASE("a run's fifo, semaphore and progress are its account's alone and go together") {
    TestRequest request;
    PrepareBackgroundFolder();
    const BackgroundFiles files("1234567890", getpid());
    CHECK_FALSE(files.Exist());
    REQUIRE(files.Create(7));
    CHECK(files.Exist());
    CHECK(HasSemaphore(files));
    const std::string pid = std::to_string(getpid());
    CHECK(Fifos(request) ==
          std::set<std::string>{"1234567890_" + pid + "_out", "1234567890_" + pid + "_progress"});
    struct stat info {};
    REQUIRE(stat(RootPath(files.fifo().c_str()).c_str(), &info) == 0);
    CHECK(S_ISFIFO(info.st_mode));
    CHECK((info.st_mode & 0777) == 0600);

    BackgroundProgress* mine = files.MapProgress();
    REQUIRE(mine != nullptr);
    mine->rows = 5'000'000'000;
    BackgroundProgress seen;
    REQUIRE(files.ReadProgress(seen));
    CHECK(seen.rows == 5'000'000'000);
    CHECK(seen.contactId == 7);

    files.Remove();
    CHECK_FALSE(files.Exist());
    CHECK_FALSE(HasSemaphore(files));
    CHECK_FALSE(files.ReadProgress(seen));
    CHECK(Fifos(request).empty());
}

TEST_CASE("the sweep takes what a process that is gone left long ago, and nothing else") {
    TestRequest request;
    PrepareBackgroundFolder();
    constexpr pid_t kNobody = 4194305;  // beyond the largest process id
    const BackgroundFiles gone("11", kNobody);
    const BackgroundFiles justGone("12", kNobody);
    const BackgroundFiles alive("13", getpid());
    for (const BackgroundFiles* files : {&gone, &justGone, &alive})
        REQUIRE(files->Create(1));
    MakeOld(gone);
    MakeOld(alive);
    const char* const strangers[] = {"14_x_out", "_4194305_out", "15_4194305", "note_1_out"};
    for (const char* name : strangers)
        request.Write(std::string("Norvane/fifos/") + name, "");

    PrepareBackgroundFolder();
    CHECK_FALSE(gone.Exist());
    CHECK_FALSE(HasSemaphore(gone));
    CHECK(justGone.Exist());
    CHECK(alive.Exist());
    for (const char* name : strangers)
        CHECK(Fifos(request).count(name) == 1);
    justGone.Remove();
    alive.Remove();
}

TEST_CASE("a process counts as this program's only while it is") {
    CHECK(RunsThisProgram(getpid()));
    CHECK_FALSE(RunsThisProgram(4194305));
    CHECK_FALSE(RunsThisProgram(getppid()));  // whatever started the tests
}
