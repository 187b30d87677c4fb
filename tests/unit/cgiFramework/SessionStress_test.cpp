#include <doctest/doctest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "cgiFramework/WebContext.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

constexpr int kProcesses = 8;
constexpr int kSessions = 4;

// LUMORA_SESSION_SAVES asks for more than an ordinary run's.
int Saves() {
    const char* asked = getenv("LUMORA_SESSION_SAVES");
    return asked != nullptr ? atoi(asked) : 20000;
}

// Requests that load a session and save it with one number in three variables of their own length.
void SaveOften(int process, int count) {
    for (int i = 0; i < count; ++i) {
        WebContext ctx("/Norvane/none", nullptr);
        ctx.SetWebArgument("sessionId", 100 + (process + i) % kSessions);
        ctx.InitSession("Lumora", 0, /*inUrl=*/true);
        if (!ctx.HasExistingSession()) _exit(1);
        const int number = process * 1000000 + i;
        ctx.SetWebSessionVar("first", number);
        ctx.SetWebSessionVar("filler", std::string(static_cast<size_t>(i % 1500), 'x').c_str());
        ctx.SetWebSessionVar("last", number);
    }
}

}  // namespace

TEST_CASE("requests that save one session at the same time neither lose nor mix it") {
    TestRequest request;
    for (int s = 0; s < kSessions; ++s) {
        request.Set("QUERY_STRING", "sessionId=" + std::to_string(100 + s));
        WebContext ctx("/Norvane/none", nullptr);
        ctx.InitSession("Lumora", 0, /*inUrl=*/true);
    }
    for (int process = 0; process < kProcesses; ++process) {
        if (fork() != 0) continue;
        SaveOften(process, Saves() / kProcesses);
        _exit(0);
    }
    for (int process = 0; process < kProcesses; ++process) {
        int status = -1;
        REQUIRE(wait(&status) > 0);
        CHECK(status == 0);
    }
    for (int s = 0; s < kSessions; ++s) {
        const std::string text = request.Read("Norvane/sessions/Lumora_" + std::to_string(100 + s));
        CAPTURE(text);
        const size_t first = text.find("\nfirst=");
        const size_t last = text.find("\nlast=");
        REQUIRE(first != std::string::npos);
        REQUIRE(last != std::string::npos);
        CHECK(text.substr(first + 7, text.find('\n', first + 7) - first - 7) + "\n" ==
              text.substr(last + 6));
        CHECK(text.starts_with("REMOTE_ADDR=192.0.2.1\n"));
    }
}
