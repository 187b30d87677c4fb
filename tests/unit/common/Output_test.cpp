// The small helpers for what leaves the program: pages, paths, failures and the log.
#include <doctest/doctest.h>
#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "common/Html.h"
#include "common/Log.h"
#include "common/Path.h"
#include "common/ThrowText.h"

namespace {

// What `action` writes to descriptor 2, which may be up to a pipe's worth.
template <class Action>
std::string StandardErrorOf(Action action) {
    int ends[2];
    REQUIRE(pipe(ends) == 0);
    const int kept = dup(2);
    dup2(ends[1], 2);
    close(ends[1]);
    action();
    dup2(kept, 2);
    close(kept);
    std::string text(4096, '\0');
    const ssize_t size = read(ends[0], text.data(), text.size());
    close(ends[0]);
    text.resize(size > 0 ? static_cast<size_t>(size) : 0);
    return text;
}

}  // namespace

TEST_CASE("HTML escapers") {
    const char* hostile = "<a href=\"x\" b='y'>&amp;</a>";
    CHECK(HtmlText(hostile) == "&lt;a href=\"x\" b='y'&gt;&amp;amp;&lt;/a&gt;");
    CHECK(HtmlAttr(hostile) == "&lt;a href=&quot;x&quot; b=&#39;y&#39;&gt;&amp;amp;&lt;/a&gt;");
    CHECK(HtmlText("plain caf\xc3\xa9") == "plain caf\xc3\xa9");
    CHECK(HtmlText(nullptr) == "");
    CHECK(HtmlAttr("") == "");
    std::string out = "x";
    AppendHtmlText(out, std::string_view("<b>!", 3));
    AppendHtmlText(out, "");
    CHECK(out == "x&lt;b&gt;");
}

TEST_CASE("the run-time root goes in front of the system's folders only") {
    const struct {
        const char* root;
        const char* path;
        const char* expected;
    } cases[] = {
        {"/run/x", "/Norvane/config/Lumora.cfg", "/run/x/Norvane/config/Lumora.cfg"},
        {"/run/x/", "/media", "/run/x/media"},
        {"/run/x", "/ftp/a", "/run/x/ftp/a"},
        {"/run/x", "/hosts/a", "/run/x/hosts/a"},
        {"/run/x", "/Library/a", "/run/x/Library/a"},
        {"/run/x", "/NorvaneX/a", "/NorvaneX/a"},
        {"/run/x", "/etc/passwd", "/etc/passwd"},
        {"/run/x", "Norvane/a", "Norvane/a"},
        {"/run/x", nullptr, ""},
        {"", "/Norvane/a", "/Norvane/a"},
        {nullptr, "/Norvane/a", "/Norvane/a"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.path);
        if (c.root != nullptr)
            setenv("LUMORA_ROOT", c.root, /*overwrite=*/1);
        else
            unsetenv("LUMORA_ROOT");
        CHECK(RootPath(c.path) == c.expected);
    }
}

TEST_CASE("a thrown text outlives the throw and the next ones, and is cut, never overrun") {
    const char* first = nullptr;
    try {
        ThrowText("code %d", 5);
    } catch (const char* text) {
        first = text;
    }
    try {
        ThrowText("again: %s", first);
    } catch (const char* text) {
        CHECK(std::string(text) == "again: code 5");
    }
    CHECK(std::string(first) == "code 5");
    try {
        ThrowText("%s", std::string(10000, 'x').c_str());
    } catch (const char* text) {
        CHECK(std::string(text).size() == 4095);
    }
}

TEST_CASE("the log follows its threshold and keeps an entry on one line") {
    const struct {
        int level;
        const char* expected;
    } cases[] = {{2, "A"}, {3, "AE"}, {5, "AE"}, {6, "AED"}};
    for (const auto& c : cases) {
        CAPTURE(c.level);
        syslog_level = c.level;
        std::string seen;
        if (!StandardErrorOf([] { LogAlways(LOG_INFO, "a"); }).empty()) seen += 'A';
        if (!StandardErrorOf([] { LogError("e"); }).empty()) seen += 'E';
        if (!StandardErrorOf([] { LogDebug("d"); }).empty()) seen += 'D';
        CHECK(seen == c.expected);
    }
    syslog_level = 3;

    const std::string entry = StandardErrorOf([] {
        errno = ENOENT;
        __extension__ LogError("open %s: %m\n", "a\nb\x1b");
        CHECK(errno == ENOENT);
    });
    CHECK(entry.ends_with("]: open a?b?: No such file or directory\n"));
    CHECK(entry.starts_with("lumora["));
}
