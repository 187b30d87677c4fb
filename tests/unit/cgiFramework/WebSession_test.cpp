#include "cgiFramework/WebSession.h"

#include <doctest/doctest.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include "cgiFramework/WebContext.h"
#include "unit/cgiFramework/TestRequest.h"

namespace {

constexpr char kConfig[] = "/Norvane/config/Lumora.cfg";
constexpr int kTwelveHours = 43200;
using Names = std::vector<std::string>;

void Open(WebContext& ctx, bool inUrl = true) {
    ctx.InitSession("Lumora", kTwelveHours, inUrl);
}

std::string FileOf(const std::string& id) {
    return "Norvane/sessions/Lumora_" + id;
}

// Starts a session with one variable and answers its id.
std::string NewSession(const char* name, const char* value) {
    WebContext ctx(kConfig, nullptr);
    Open(ctx);
    ctx.SetWebSessionVar(name, value);
    return ctx.GetWebSessionId();
}

}  // namespace

TEST_CASE("a session begins with its first variable and comes back with its id") {
    TestRequest request;
    std::string id;
    {
        WebContext ctx(kConfig, nullptr);
        Open(ctx);
        CHECK(request.SessionFiles().empty());
        ctx.SetWebSessionVar("colour", "blue");
        id = ctx.GetWebSessionId();
        CHECK(IsSessionId(id.c_str()));
        CHECK(std::string(ctx.GetURL(nullptr)) == "/lumora/lumora.cgi?sessionId=" + id);
        CHECK_FALSE(ctx.HasExistingSession());
    }
    CHECK(request.SessionFiles() == Names{"Lumora_" + id});
    CHECK(request.Read(FileOf(id)) == "REMOTE_ADDR=192.0.2.1\nREMOTE_PORT=4711\ncolour=blue\n");
    struct stat info {};
    REQUIRE(stat((request.root / FileOf(id)).c_str(), &info) == 0);
    CHECK((info.st_mode & 0777) == 0600);

    request.Set("QUERY_STRING", "sessionId=" + id);
    WebContext again(kConfig, nullptr);
    Open(again);
    CHECK(again.HasExistingSession());
    CHECK(*again.GetWebSessionVar("colour") == "blue");
    CHECK(std::string(again.GetVariable("colour")) == "blue");
}

TEST_CASE("without the id in URLs it travels in a cookie") {
    TestRequest request;
    std::string id;
    {
        WebContext ctx(kConfig, nullptr);
        Open(ctx, /*inUrl=*/false);
        ctx.SetWebSessionVar("a", "1");
        id = ctx.GetWebSessionId();
        CHECK(ctx.GetWebCookie("sessionId")->updated);
        CHECK(ctx.GetWebCookie("sessionId")->value == id.c_str());
    }
    request.Set("HTTP_COOKIE", "sessionId=" + id);
    WebContext again(kConfig, nullptr);
    Open(again, /*inUrl=*/false);
    CHECK(again.HasWebSessionVar("a"));
}

TEST_CASE("only 1 to 20 digits are a session id") {
    const char* const hostile[] = {
        "../../config/Lumora.cfg", "12a", "", "123456789012345678901", "-1", "1\n2", "0x1"};
    for (const char* text : hostile) {
        CAPTURE(text);
        CHECK_FALSE(IsSessionId(text));
        TestRequest request;
        WebContext ctx(kConfig, nullptr);
        ctx.SetWebArgument("sessionId", text);
        Open(ctx);
        CHECK(request.SessionFiles().empty());
        ctx.SetWebSessionVar("a", "1");
        CHECK(IsSessionId(ctx.GetWebSessionId()));
    }
    CHECK(IsSessionId("12345678901234567890"));
}

TEST_CASE("a value cannot plant another variable") {
    TestRequest request;
    std::string id;
    {
        WebContext ctx(kConfig, nullptr);
        Open(ctx);
        ctx.SetWebSessionVar("a", "x\nisSuperVisor=1");
        ctx.SetWebSessionVar("b", (std::string(3000, 'y') + "=1").c_str());
        ctx.SetWebSessionVar("c=d", "1");
        ctx.SetWebSessionVar("e", "last");
        id = ctx.GetWebSessionId();
    }
    request.Set("QUERY_STRING", "sessionId=" + id);
    WebContext again(kConfig, nullptr);
    Open(again);
    CHECK(*again.GetWebSessionVar("a") == "x");
    CHECK_FALSE(again.HasWebSessionVar("isSuperVisor"));
    CHECK(again.GetWebSessionVar("b")->value == std::string(2045, 'y').c_str());
    CHECK_FALSE(again.HasWebSessionVar("c"));
    CHECK(*again.GetWebSessionVar("e") == "last");
}

TEST_CASE("another address gets a session of its own and leaves the owner's as it was") {
    TestRequest request;
    const std::string id = NewSession("colour", "blue");
    const std::string before = request.Read(FileOf(id));
    request.Set("QUERY_STRING", "sessionId=" + id);
    request.Set("REMOTE_ADDR", "198.51.100.9");
    {
        WebContext ctx(kConfig, nullptr);
        Open(ctx);
        CHECK_FALSE(ctx.HasWebSessionVar("colour"));
        CHECK_FALSE(ctx.HasExistingSession());
        CHECK(ctx["invalidSessionId"] == id.c_str());
        CHECK(std::string(ctx.GetWebSessionId()) != id);
        CHECK(std::string(ctx.GetURL(nullptr)).find(id) == std::string::npos);
        ctx.SetWebSessionVar("colour", "red");
    }
    CHECK(request.Read(FileOf(id)) == before);
}

TEST_CASE("an id without a file is kept, and a session deleted meanwhile stays deleted") {
    TestRequest request;
    request.Set("QUERY_STRING", "sessionId=42");
    {
        WebContext ctx(kConfig, nullptr);
        Open(ctx);
        CHECK(std::string(ctx.GetWebSessionId()) == "42");
    }
    CHECK(request.SessionFiles() == Names{"Lumora_42"});
    {
        WebContext ctx(kConfig, nullptr);
        Open(ctx);
        ctx.SetWebSessionVar("a", "1");
        ctx.DeleteSession();
    }
    CHECK(request.SessionFiles().empty());
}

TEST_CASE("an id that the browser brought along is told from our own, and can be exchanged") {
    TestRequest request;
    request.Set("QUERY_STRING", "sessionId=42");
    { WebContext(kConfig, nullptr).InitSession("Lumora", kTwelveHours, /*inUrl=*/true); }
    std::string id;
    {
        WebContext ctx(kConfig, nullptr);
        Open(ctx);
        CHECK(ctx.HasExistingSession());
        CHECK(ctx.IsSessionIdForeign());
        ctx.SetWebSessionVar("colour", "blue");
        ctx.RenewSessionId();
        CHECK_FALSE(ctx.HasExistingSession());
        id = ctx.GetWebSessionId();
        CHECK(id != "42");
        CHECK(std::string(ctx.GetURL(nullptr)) == "/lumora/lumora.cgi?sessionId=" + id);
    }
    request.Set("QUERY_STRING", "sessionId=" + id);
    WebContext again(kConfig, nullptr);
    Open(again);
    CHECK(again.HasExistingSession());
    CHECK_FALSE(again.IsSessionIdForeign());
    CHECK(*again.GetWebSessionVar("colour") == "blue");
}

TEST_CASE("a further round of a request keeps the session's changes") {
    TestRequest request;
    WebContext ctx(kConfig, nullptr);
    Open(ctx);
    ctx.SetWebSessionVar("a", "1");
    const std::string id = ctx.GetWebSessionId();
    ctx.ScanWebArguments("pagename=x");
    Open(ctx);
    CHECK(*ctx.GetWebSessionVar("a") == "1");
    CHECK(std::string(ctx.GetURL(nullptr)) == "/lumora/lumora.cgi?sessionId=" + id);
}

TEST_CASE("a link in the place of a session file is neither read nor written") {
    TestRequest request;
    std::filesystem::create_directories(request.root / "Norvane/sessions");
    const std::string planted = "REMOTE_ADDR=192.0.2.1\nadministrator=1\n";
    request.Write("target", planted);
    std::filesystem::create_symlink(request.root / "target", request.root / FileOf("7"));
    request.Set("QUERY_STRING", "sessionId=7");
    {
        WebContext ctx(kConfig, nullptr);
        Open(ctx);
        CHECK_FALSE(ctx.HasWebSessionVar("administrator"));
        CHECK(std::string(ctx.GetWebSessionId()) != "7");
    }
    CHECK(request.Read("target") == planted);
}

TEST_CASE("the sweep removes old files of the application only") {
    TestRequest request;
    std::filesystem::create_directories(request.root / "Norvane/sessions/Lumora_folder");
    const time_t longAgo = time(nullptr) - kTwelveHours - 10;
    const utimbuf old = {longAgo, longAgo};
    for (const char* name : {"Lumora_1", "+Lumora_2", "other_3", "xLumora"}) {
        const std::string path = std::string("Norvane/sessions/") + name;
        request.Write(path, "");
        utime((request.root / path).c_str(), &old);
    }
    request.Write("Norvane/sessions/Lumora_new", "");
    CleanupDir("/Norvane/sessions", "Lumora", kTwelveHours);
    CHECK(request.SessionFiles() == Names{"+Lumora_2", "Lumora_folder", "Lumora_new", "other_3"});
    CleanupDir("/Norvane/nowhere", "Lumora", 1);
}

TEST_CASE("a lock that is released meanwhile is waited for, and no file is created") {
    TestRequest request;
    request.Write("file", "text");
    const std::string path = (request.root / "file").string();
    int ready[2];
    REQUIRE(pipe(ready) == 0);
    const pid_t child = fork();
    if (child == 0) {
        flock(open(path.c_str(), O_RDONLY), LOCK_EX);
        (void)!write(ready[1], "x", 1);
        usleep(200000);
        _exit(0);
    }
    char byte = 0;
    REQUIRE(read(ready[0], &byte, 1) == 1);
    {
        LockedFile file(path.c_str(), "w");
        REQUIRE(static_cast<FILE*>(file) != nullptr);
        fputs("new", file);
    }
    CHECK(request.Read("file") == "new");
    close(ready[0]);
    close(ready[1]);
    LockedFile missing((path + "x").c_str(), "w");
    CHECK(static_cast<FILE*>(missing) == nullptr);
    CHECK_FALSE(std::filesystem::exists(path + "x"));
}
