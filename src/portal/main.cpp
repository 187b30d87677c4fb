// One request, one process, one page. Whatever fails is shown on the page, and the exit status is
// 0.
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>

#include "cgiFramework/WebRender.h"
#include "common/Html.h"
#include "common/Log.h"
#include "common/Parse.h"
#include "kernel/OSConsole.h"
#include "kernel/OSStartup.h"
#include "portal/Dispatch.h"
#include "portal/background/BackgroundRender.h"
#include "portal/context/ManagerContext.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr char kSettingsFile[] = "/Norvane/config/Lumora.cfg";
constexpr char kReportFolder[] = "/Norvane/config/reports/";
constexpr char kSessionName[] = "Lumora";
constexpr int kSessionSeconds = 43200;
constexpr int kMostRounds = 10;
constexpr int kMostVerbose = 9;

// "syslog_level" of the request sets how much is logged, within the levels that mean something.
void ReadSyslogLevel(ManagerContext& ctx) {
    const WebArgument* level = ctx.FindWebArgument("syslog_level");
    if (level == nullptr) return;
    int64_t number = 0;
    if (ParseInt64(level->Text(), number) && number >= 0)
        syslog_level = static_cast<int>(number < kMostVerbose ? number : kMostVerbose);
    fprintf(stderr, "syslog_level=%d\n", syslog_level);
}

// A session that could not be read must not be written either.
void OpenSession(ManagerContext& ctx) {
    try {
        ctx.InitSession(kSessionName, kSessionSeconds, /*inUrl=*/true);
    } catch (const char*) {
        ctx.LeaveSession();
        throw;
    }
    ctx.GetWebSessionVar("tmp");
}

// Answers the page, and the pages that it hands the request on to.
void AnswerRequest(ManagerContext& ctx, WebRender& out) {
    for (int round = 1;; ++round) {
        OpenSession(ctx);
        DisplayPage(ctx, &out);
        if (ctx.internal_redirect.IsEmpty()) return;
        if (round == kMostRounds) throw "The page hands the request on without end.";
        const char* redirect = ctx.internal_redirect.c_str();
        const char* query = strchr(redirect, '?');
        ctx.ScanWebArguments(query != nullptr ? query + 1 : redirect);
    }
}

// The page that says what went wrong. It needs neither database nor session.
void ShowError(WebContext& ctx, const char* message, StdoutWebRender& out) {
    ctx.client_redirect = "";
    StandardPage page(ctx, /*addToHistory=*/false);
    page.title = "System error";
    page.showIdentityNotice = false;
    WebDiv& block = page.Adopt(new WebDiv("class=\"reportWarning\" role=\"alert\""));
    block.Add(new WebValue("SYSTEM ERROR: %s", HtmlText(message).c_str()));
    auto* manager = dynamic_cast<ManagerContext*>(&ctx);
    if (manager != nullptr && manager->background && !HasBackgroundOutput()) {
        OfferErrorPage(*manager, page);
        return;
    }
    // A page of which the browser has a part already can only be followed by the message.
    if (out.Discard())
        page.Render(ctx, &out);
    else
        block.Render(ctx, &out);
}

// Runs `work`; whatever it throws goes to `failed` as a text.
template <class Work, class Failed>
void Attempt(Work work, Failed failed) {
    try {
        work();
    } catch (const char* message) {
        failed(message);
    } catch (const std::exception& failure) {
        failed(failure.what());
    }
}

// The last resort, when not even the page that says what went wrong can be made.
void ShowPlainError(const char* message, StdoutWebRender& out) {
    if (out.Discard()) out.Write("Content-type: text/plain;charset=utf-8\n\n");
    out.Write("SYSTEM ERROR: ");
    out.Write(message);
    out.Write("\n");
}

// What the request could be read as once already is not read again: it may be what failed.
void ForgetRequest() {
    for (const char* name : {"QUERY_STRING", "CONTENT_LENGTH", "CONTENT_TYPE", "HTTP_COOKIE"})
        unsetenv(name);
}

void ReportContextFailure(const char* program, const char* message, StdoutWebRender& out) {
    LogError("Context failed");
    // The text may lie in a buffer that the next failure uses.
    const UString text(message);
    ForgetRequest();
    Attempt(
        [&] {
            WebContext bare(program, nullptr);
            ShowError(bare, text.c_str(), out);
        },
        [&](const char*) { ShowPlainError(text.c_str(), out); });
    fputs(text.c_str(), stderr);
}

std::unique_ptr<ManagerContext> OpenContext(const char* program, StdoutWebRender& out) {
    std::unique_ptr<ManagerContext> ctx;
    Attempt(
        [&] {
            ctx = std::make_unique<ManagerContext>(kSettingsFile, kReportFolder);
            current_context = ctx.get();
            ReadSyslogLevel(*ctx);
        },
        [&](const char* message) { ReportContextFailure(program, message, out); });
    return ctx;
}

void Answer(ManagerContext& ctx, StdoutWebRender& out) {
    Attempt(
        [&] {
            AnswerRequest(ctx, out);
            ctx.SaveSession();
        },
        [&](const char* message) {
            LogError("DisplayPage failed");
            ConsoleReport("DisplayPage: %s\n", message);
            const UString text(message);
            Attempt([&] { ShowError(ctx, text.c_str(), out); },
                    [&](const char*) { ShowPlainError(text.c_str(), out); });
        });
    if (!ctx.background) return;
    out.Flush();
    EndBackground(ctx);
}

}  // namespace

int main(int, char** argv) {
    // What a web server leaves open is not this program's, and must not outlive the request in
    // another process.
    close_range(STDERR_FILENO + 1, ~0U, 0);
    os_startup();
    Console->SetStream(stderr);
    signal(SIGPIPE, SIG_IGN);  // a browser that has gone is noticed by the sink
    signal(SIGUSR1, SIG_IGN);  // only what renders in the background can be cancelled
    {
        StdoutWebRender out;
        const std::unique_ptr<ManagerContext> ctx = OpenContext(argv[0], out);
        if (ctx != nullptr) Answer(*ctx, out);
    }
    Console = nullptr;
    return 0;
}
