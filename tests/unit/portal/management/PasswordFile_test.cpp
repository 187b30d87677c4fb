#include "portal/management/PasswordFile.h"

#include <doctest/doctest.h>
#include <sys/stat.h>

#include <filesystem>

#include "unit/cgiFramework/TestRequest.h"

TEST_CASE("a hash belongs to its password and to no other") {
    const std::string hash = HashPassword("correct horse");
    CHECK(hash.starts_with("$2y$10$"));
    CHECK(hash != HashPassword("correct horse"));
    CHECK(IsPassword("correct horse", hash));
    CHECK_FALSE(IsPassword("correct horsf", hash));
    CHECK_FALSE(IsPassword("", hash));
    CHECK_FALSE(IsPassword("", ""));
    CHECK_FALSE(IsPassword("x", "x"));
    CHECK_FALSE(IsPassword("x", hash.substr(0, 29)));
}

TEST_CASE("one line of the password file changes") {
    const struct {
        const char* what;
        const char* before;
        const char* after;
    } cases[] = {
        {"in the middle", "a:1\nbob:2\nc:3\n", "a:1\nbob:H\nc:3\n"},
        {"at the end, without a line end", "a:1\nbob:2", "a:1\nbob:H\n"},
        {"not there yet", "a:1", "a:1\nbob:H\n"},
        {"empty", "", "bob:H\n"},
        {"twice", "bob:2\nbob:3\n", "bob:H\n"},
        {"others that look alike", "bobby:2\nxbob:3\n# bob:\n", "bobby:2\nxbob:3\n# bob:\nbob:H\n"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(WithPassword(c.before, "bob", "H") == c.after);
    }
}

TEST_CASE("the password file is replaced whole, or not at all") {
    TestRequest request;
    request.Write("Norvane/config/passwords", "a:1\nbob:2\n");
    const std::filesystem::path file = request.root / "Norvane/config/passwords";
    chmod(file.c_str(), 0640);
    request.Write("Norvane/config/passwords.new", "left behind");
    RewritePasswordFile("/Norvane/config/passwords", "bob", "H");
    CHECK(request.Read("Norvane/config/passwords") == "a:1\nbob:H\n");
    CHECK_FALSE(std::filesystem::exists(request.root / "Norvane/config/passwords.new"));
    struct stat info {};
    REQUIRE(stat(file.c_str(), &info) == 0);
    CHECK((info.st_mode & 0777) == 0640);
    CHECK_THROWS_AS(RewritePasswordFile("/Norvane/config/none", "bob", "H"), const char*);
    CHECK_FALSE(std::filesystem::exists(request.root / "Norvane/config/none"));
}
