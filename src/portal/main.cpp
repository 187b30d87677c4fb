// One request, one process, one page. Whatever fails is shown on the page, and the exit status is
// 0.
#include <signal.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "cgiFramework/WebRender.h"
#include "common/Html.h"
#include "common/Log.h"
#include "common/Parse.h"
#include "kernel/OSConsole.h"
#include "kernel/OSStartup.h"
#include "portal/Dispatch.h"
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

// Answers the page, and the pages that it hands the request on to.
void AnswerRequest(ManagerContext& ctx, WebRender& out) {
    for (int round = 1;; ++round) {
        ctx.InitSession(kSessionName, kSessionSeconds, /*inUrl=*/true);
        ctx.GetWebSessionVar("tmp");
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
    // A page of which the browser has a part already can only be followed by the message.
    if (out.Discard())
        page.Render(ctx, &out);
    else
        block.Render(ctx, &out);
}

std::unique_ptr<ManagerContext> OpenContext(const char* program, StdoutWebRender& out) {
    try {
        auto ctx = std::make_unique<ManagerContext>(kSettingsFile, kReportFolder);
        ReadSyslogLevel(*ctx);
        return ctx;
    } catch (const char* message) {
        LogError("Context failed");
        WebContext bare(program, nullptr);
        ShowError(bare, message, out);
        fputs(message, stderr);
        return nullptr;
    }
}

}  // namespace

int main(int, char** argv) {
    os_startup();
    Console->SetStream(stderr);
    signal(SIGPIPE, SIG_IGN);  // a browser that has gone is noticed by the sink
    {
        StdoutWebRender out;
        const std::unique_ptr<ManagerContext> ctx = OpenContext(argv[0], out);
        if (ctx != nullptr) {
            try {
                AnswerRequest(*ctx, out);
            } catch (const char* message) {
                LogError("DisplayPage failed");
                ConsoleReport("DisplayPage: %s\n", message);
                ShowError(*ctx, message, out);
            }
        }
    }
    Console = nullptr;
    return 0;
}
