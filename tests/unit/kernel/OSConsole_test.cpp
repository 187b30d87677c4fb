#include "kernel/OSConsole.h"

#include <doctest/doctest.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "kernel/OSStartup.h"

namespace {

// A memory stream, and what was written to it.
class Sink {
  public:
    Sink() : stream_(open_memstream(&text_, &size_)) {}
    ~Sink() {
        std::fclose(stream_);
        std::free(text_);
    }
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    FILE* stream() const { return stream_; }
    std::string text() const {
        std::fflush(stream_);
        return std::string(text_, size_);
    }

  private:
    char* text_ = nullptr;
    size_t size_ = 0;
    FILE* stream_;
};

}  // namespace

TEST_CASE("a report is exactly one line, whatever the data holds") {
    const struct {
        const char* what;
        const char* data;
        const char* expected;
    } cases[] = {
        {"unfinished", "plain", "plain\n"},
        {"finished", "plain\n", "plain\n"},
        {"empty", "", "\n"},
        {"a forged line", "a\nb\r\n", "a?b?\n"},
        {"terminal control", "\x1b[2J\x7f\t", "?[2J??\n"},
        {"UTF-8 stays", "caf\xc3\xa9", "caf\xc3\xa9\n"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Sink sink;
        OSConsole console(sink.stream());
        errno = ENOENT;
        console.Report("%s", c.data);
        CHECK(errno == ENOENT);
        CHECK(sink.text() == c.expected);
    }
}

TEST_CASE("reports go to the console of the process when there is one with a stream") {
    const Sink sink;
    OSConsole* before = Console;
    os_startup();
    REQUIRE(Console != nullptr);
    ConsoleReport("dropped: no stream yet");
    Console->SetStream(sink.stream());
    ConsoleReport("size %d", 5);
    Console->SetStream(nullptr);
    Console = before;
    CHECK(sink.text() == "size 5\n");
}

TEST_CASE("start-up opens the standard descriptors that the parent left closed") {
    const pid_t child = fork();
    if (child == 0) {
        close(0);
        close(1);
        os_startup();
        const int next = open("/dev/null", O_RDONLY);
        const bool open01 = fcntl(0, F_GETFD) >= 0 && fcntl(1, F_GETFD) >= 0;
        _exit(open01 && next > 2 ? 0 : 1);
    }
    int status = -1;
    REQUIRE(waitpid(child, &status, 0) == child);
    CHECK(status == 0);
}

TEST_CASE("the clock never goes back") {
    const int64_t first = os_clock();
    CHECK(os_clock() >= first);
}
