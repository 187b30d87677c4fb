#include "ldap/lclient.h"

#include <doctest/doctest.h>

#include "LdapTest.h"
#include "ScriptedServer.h"
#include "ldap/LDAPMod.h"

namespace {

// Results of the operations; the digits behind "02 01" are the message id.
constexpr char kBound[] = "30 0C 02 01 01 61 07 0A 01 00 04 00 04 00";

std::string Done(int id, const char* code = "00") {
    char hex[64];
    std::snprintf(hex, sizeof hex, "30 0C 02 01 %02X 65 07 0A 01 %s 04 00 04 00 ", id, code);
    return hex;
}

// An entry of that one-letter name with the attribute a=x.
std::string Entry(int id, char name) {
    char hex[96];
    std::snprintf(hex, sizeof hex,
                  "30 14 02 01 %02X 64 0F 04 01 %02X 30 0A 30 08 04 01 61 31 03 04 01 78 ", id,
                  name);
    return hex;
}

int Search(LDAPClient& client, const char* filter = "(cn=*)") {
    return client.Search("", 2, filter, nullptr, 0, 0, 0, 0);
}

// The names of the entries that are left, and the outcome.
std::string Rest(LDAPClient& client) {
    std::string names;
    int code = 0;
    do {
        if (client.CurrentObject() != nullptr) names += client.CurrentObject();
    } while (client.GetNextEntry(code, 0) != 0);
    return names + " " + std::to_string(code);
}

}  // namespace

TEST_CASE("a bind without password sends the fixed one; a search walks its entries") {
    ScriptedServer server("127.0.0.1", 0, {kBound, Entry(2, 'd') + Entry(2, 'e') + Done(2)});
    {
        LDAPClient client("127.0.0.1", server.port(), nullptr, 0);
        REQUIRE(client.state == LDAPClient::CONNECTED);
        CHECK(client.SimpleBind("u", nullptr) == 0);
        CHECK(client.state == LDAPClient::BOUND);
        REQUIRE(Search(client) == 0);
        char* name = nullptr;
        char* value = nullptr;
        REQUIRE(client.FirstAttribute(name, value) == 1);
        CHECK(std::string(name) + value == "ax");
        CHECK(client.NextAttribute(name, value) == 0);
        CHECK(Rest(client) == "de 0");
        CHECK(client.CurrentObject() == nullptr);
        CHECK(client.FirstAttribute(name, value) == 0);
        CHECK(client.Unbind() == 0);
        CHECK(client.state == LDAPClient::FINISHED);
    }
    CHECK(server.Requests() ==
          "30 19 02 01 01 60 14 02 01 02 04 01 75 80 0C 37 33 35 31 39 30 34 36 32 38 30 33\n"
          "30 1F 02 01 02 63 1A 04 00 0A 01 02 0A 01 00 02 01 00 02 01 00 01 01 00 87 02 63 6E "
          "30 03 04 01 2A\n"
          "30 05 02 01 03 42 00\n");
}

TEST_CASE("nothing is sent for a search while not bound, or with a filter that is none") {
    const Reports reports;
    ScriptedServer server("127.0.0.1", 0, {kBound});
    {
        LDAPClient client("127.0.0.1", server.port(), nullptr, 0);
        CHECK(Search(client) == 50);
        CHECK(client.SimpleBind("u", "p") == 0);
        CHECK(Search(client, "cn=xy") == 87);
    }
    CHECK(server.Requests() == "30 0E 02 01 01 60 09 02 01 02 04 01 75 80 01 70\n");
}

TEST_CASE("answers to a search that was given up are skipped") {
    const struct {
        const char* what;
        std::string answers;
        const char* rest;
    } cases[] = {
        {"a stale done, then the search", Done(1) + Entry(2, 'e') + Done(2), "e 0"},
        {"a stale done, then nothing found", Done(1) + Done(2), " 0"},
        {"stale entries and done",
         Entry(1, 'x') + Entry(1, 'y') + Done(1) + Entry(2, 'e') + Done(2), "e 0"},
        {"six of them", Done(1) + Done(1) + Done(1) + Done(1) + Done(1) + Done(1) + Done(2), " 0"},
        {"seven are too many",
         Done(1) + Done(1) + Done(1) + Done(1) + Done(1) + Done(1) + Done(1) + Done(2), " 80"},
        {"an id from nowhere", Done(9), " 80"},
        {"another operation's answer", "30 0C 02 01 02 67 07 0A 01 00 04 00 04 00", " 2"},
        {"the server's own code", Done(2, "20"), " 32"},
        {"end of the stream", "", " 81"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Reports reports;
        ScriptedServer server("127.0.0.1", 0, {kBound, c.answers});
        LDAPClient client("127.0.0.1", server.port(), nullptr, 0);
        REQUIRE(client.SimpleBind("u", "p") == 0);
        const int code = Search(client);
        const std::string rest =
            code == 0 && client.result != nullptr ? Rest(client) : " " + std::to_string(code);
        CHECK(rest == c.rest);
    }
}

TEST_CASE("changes answer the server's code, after what was left of a search") {
    const Reports reports;
    const std::string head = "30 0C 02 01 ";
    ScriptedServer server(
        "127.0.0.1", 0,
        {kBound, Entry(2, 'd') + Entry(2, 'e') + Done(2), head + "03 67 07 0A 01 00 04 00 04 00",
         head + "04 69 07 0A 01 44 04 00 04 00", head + "05 6B 07 0A 01 20 04 00 04 00",
         head + "06 6B 07 0A 01 00 04 00 04 00"});
    {
        LDAPClient client("127.0.0.1", server.port(), nullptr, 0);
        REQUIRE(client.SimpleBind("u", "p") == 0);
        REQUIRE(Search(client) == 0);
        LDAPMod mods[2];
        mods[0].Set("a", "x");
        CHECK(client.Modify("d", mods) == 0);
        CHECK(client.Add("d", mods) == 68);
        CHECK(reports.Has("LDAP Add: result=68"));
        CHECK(client.Delete("d") == 32);
        CHECK(reports.Has("LDAP Delete: result=32"));
        CHECK(client.ModRDN("d", "cn=e") == 2);
        CHECK(client.Delete("d") == 81);
        CHECK(client.state == LDAPClient::FAILED);
        CHECK(client.Modify("d", mods) == 81);
        CHECK(reports.Has("LDAPClient::Modify: socket not connected"));
        CHECK(client.SimpleBind("u", "p") == 81);
        CHECK(reports.Has("LDAPClient::SimpleBind: socket not connected"));
        CHECK(Search(client) == 81);
        CHECK(reports.Has("LDAPClient::Search: socket not connected"));
    }
    CHECK(server.Requests().find("30 19 02 01 03 66 14 04 01 64 30 0F 30") != std::string::npos);
}

TEST_CASE("a refused or broken bind does not sign in") {
    const struct {
        const char* answer;
        int code;
    } cases[] = {
        {"30 0C 02 01 01 61 07 0A 01 31 04 00 04 00", 49},
        {"30 05 02 01 01 61 00", 2},
        {"30 0C 02 01 01 65 07 0A 01 00 04 00 04 00", 2},
        {"30 03 02 01 01 00 00", 81},
        {"", 81},
    };
    for (const auto& c : cases) {
        CAPTURE(c.answer);
        const Reports reports;
        ScriptedServer server("127.0.0.1", 0, {c.answer});
        LDAPClient client("127.0.0.1", server.port(), nullptr, 0);
        CHECK(client.SimpleBind("u", "p") == c.code);
        CHECK(client.state != LDAPClient::BOUND);
    }
}

TEST_CASE("ids start again at 0 before they would turn negative") {
    const Reports reports;
    LDAPClient client("127.0.0.1", 1, nullptr, 0);
    CHECK(client.state == LDAPClient::FAILED);
    CHECK(client.NextTxId() == 1);
    client.tx_msg_id = INT32_MAX;
    CHECK(client.NextTxId() == 0);
}
