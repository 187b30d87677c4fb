#include "ldap/LDAPSession.h"

#include <doctest/doctest.h>

#include "LdapTest.h"
#include "ScriptedServer.h"
#include "ldap/LDAPTable.h"
#include "ldap/lclient.h"

namespace {

constexpr char kBound[] = "30 0C 02 01 01 61 07 0A 01 00 04 00 04 00";
// Two entries, "d" and "e", each with a=x, and "d" again with a=y; then the end.
constexpr char kFound[] =
    "30 14 02 01 02 64 0F 04 01 64 30 0A 30 08 04 01 61 31 03 04 01 78 "
    "30 14 02 01 02 64 0F 04 01 65 30 0A 30 08 04 01 61 31 03 04 01 78 "
    "30 14 02 01 02 64 0F 04 01 64 30 0A 30 08 04 01 61 31 03 04 01 79 "
    "30 0C 02 01 02 65 07 0A 01 00 04 00 04 00";
constexpr char kAddress[] = "127.0.4.1";

std::string Names(LDAPTable& table) {
    std::string names;
    for (LDAPRow& row : table.rows)
        names += row["dn"];
    return names;
}

std::string Thrown(const char* server, const char* user, const char* password) {
    try {
        LDAPSession session(nullptr, server, user, password);
    } catch (const char* text) {
        return text;
    }
    return "";
}

}  // namespace

TEST_CASE("tables take what a search found, in either order, with or without repeated names") {
    const struct {
        bool append;
        bool unique;
        const char* names;
    } cases[] = {
        {true, false, "rded"}, {true, true, "rde"}, {false, false, "dedr"}, {false, true, "edr"}};
    for (const auto& c : cases) {
        CAPTURE(c.names);
        ScriptedServer server(kAddress, LDAPSession::kPort, {kBound, kFound});
        LDAPSession session(nullptr, kAddress, "u", "p");
        LDAPTable table;
        LDAPRow row;
        row.Field("dn", "r");
        table += row;
        CHECK(session.Search("", 2, "(cn=*)", nullptr, 0, 0, 0, 0) == 0);
        table.Fetch(session, c.append, c.unique);
        CHECK(Names(table) == c.names);
        CHECK(table.Find("dn", "e")->Get("a") == "x");
        CHECK(session.CurrentObject() == nullptr);
    }
}

TEST_CASE("a session that cannot connect or bind says so in a text that outlives it") {
    const Reports reports;
    CHECK(Thrown("127.0.4.2", "u", "secret") ==
          "LDAPSession Failed to connect to server=127.0.4.2 user=u\n");
    ScriptedServer server(kAddress, LDAPSession::kPort,
                          {"30 0C 02 01 01 61 07 0A 01 31 04 00 04 00"});
    CHECK(Thrown(kAddress, "u", "secret") ==
          "LDAPSession Failed to authenticate with server=127.0.4.1 user=u\n");
    CHECK(
        reports.Has("LDAPSession error LDAPSession Failed to authenticate with server=127.0.4.1"));
    CHECK_FALSE(reports.Has("secret"));
    CHECK(Thrown("", "u", "p").empty());
    CHECK(reports.Has("LDAPSession empty ldap_server"));
}

TEST_CASE("a session uses its parent's connection when server and user are the same") {
    const Reports reports;
    ScriptedServer server(kAddress, LDAPSession::kPort, {kBound, kFound});
    auto parent = std::make_unique<LDAPSession>(kAddress, "u", "p", nullptr);
    CHECK(parent->created);
    LDAPSession same(parent.get());
    LDAPSession named(parent.get(), kAddress, "u", "");
    CHECK(same.ldap_client == parent->ldap_client);
    CHECK_FALSE(same.created);
    CHECK(same.ldap_password == "p");
    CHECK(named.ldap_client == parent->ldap_client);
    CHECK(same.Search("", 2, "(cn=*)", nullptr, 0, 0, 0, 0) == 0);

    parent.reset();
    CHECK(same.ldap_client->state == LDAPClient::FINISHED);
    CHECK(same.Search("", 2, "(cn=*)", nullptr, 0, 0, 0, 0) == 81);
}

TEST_CASE("a session takes the defaults, and reconnects when its connection has gone") {
    const Reports reports;
    LDAPSession::SetDefaults(kAddress, "u", "p");
    auto first = std::make_unique<ScriptedServer>(kAddress, LDAPSession::kPort,
                                                  std::vector<std::string>{kBound});
    LDAPSession session(nullptr);
    CHECK(session.ldap_server == kAddress);
    LDAPSession::SetDefaults(nullptr, nullptr, nullptr);
    session.CheckConnection();
    CHECK(session.Search("", 2, "(cn=*)", nullptr, 0, 0, 0, 0) == 81);
    CHECK(session.res == 81);
    CHECK(first->Requests().starts_with("30 0E 02 01 01 60"));

    ScriptedServer second(kAddress, LDAPSession::kPort, {kBound, kFound});
    session.CheckConnection();
    CHECK(session.Search("", 2, "(cn=*)", nullptr, 0, 0, 0, 0) == 0);
    session.Close();
    CHECK(session.Search("", 2, "(cn=*)", nullptr, 0, 0, 0, 0) == -1);
    CHECK(session.Delete("d") == -1);
}

TEST_CASE("answers hopelessly out of step close the session") {
    const Reports reports;
    ScriptedServer server(kAddress, LDAPSession::kPort,
                          {kBound, "30 0C 02 01 63 65 07 0A 01 00 04 00 04 00"});
    LDAPSession session(nullptr, kAddress, "u", "p");
    CHECK(session.Search("", 2, "(cn=*)", nullptr, 0, 0, 0, 0) == -1);
    CHECK(session.ldap_client == nullptr);
}

TEST_CASE("a relay is told where to connect to, and then speaks as the server") {
    // The header looks to the scripted peer like a message: a byte, and '0', that is 48 more.
    const std::string host = "0" + std::string(43, 'h');
    ScriptedServer relay("127.0.4.3", 4100, {"", kBound});
    LDAPSession::SetProxy("127.0.4.3", 4100);
    CHECK(LDAPSession(host.c_str(), "u", "p", nullptr).res == 0);
    LDAPSession::SetProxy(nullptr, 0);
    CHECK(LDAPSession::proxyAddr == nullptr);
    std::string header = "\x01" + host + ":4000";
    void* bytes = header.data();
    CHECK(relay.Requests().starts_with(ToHex(static_cast<unsigned char*>(bytes), header.size()) +
                                       "\n30 0E 02 01 01 60"));
}

TEST_CASE("rows write themselves back without what is not theirs") {
    const Reports reports;
    const auto answer = [](int id, const char* tag) {
        char hex[64];
        std::snprintf(hex, sizeof hex, "30 0C 02 01 %02X %s 07 0A 01 00 04 00 04 00", id, tag);
        return std::string(hex);
    };
    ScriptedServer server(
        kAddress, LDAPSession::kPort,
        {kBound, answer(2, "67"), answer(3, "6D"), answer(4, "69"), answer(5, "6B")});
    {
        LDAPSession session(nullptr, kAddress, "u", "p");
        LDAPRow row;
        for (const char* name : {"dn", "GUID", "cn", "phone", "_phone", "mail", "objectclass"})
            row.Field(name, "%c", name[0]);
        row.Field("note", "x");
        row.Find("note")->local = true;
        CHECK(row.Modify(session) == 0);
        CHECK(row.ModifyCN(session) == 0);
        CHECK(row.Add(session) == 0);
        CHECK(row.Delete(session) == 0);

        // None of these sends anything.
        LDAPRow nameless;
        nameless.Field("mail", "m");
        session.res = 7;
        CHECK(nameless.Modify(session) == 7);
        CHECK(nameless.Delete(session) == 7);
        CHECK(nameless.Add(session) == 7);
        row.Field("cn", "%s", "");
        CHECK(row.ModifyCN(session) == 7);
        LDAPRow nothing;
        nothing.Field("dn", "d");
        CHECK(nothing.Modify(session) == 7);
    }
    CHECK(server.Requests() ==
          "30 0E 02 01 01 60 09 02 01 02 04 01 75 80 01 70\n"
          // GUID=G, replace mail by m
          "30 21 02 01 02 66 1C 04 06 47 55 49 44 3D 47 30 12 30 10 0A 01 02 30 0B 04 04 6D 61 69 "
          "6C 31 03 04 01 6D\n"
          "30 16 02 01 03 6C 11 04 06 47 55 49 44 3D 47 04 04 63 6E 3D 63 01 01 00\n"
          // d, with mail and objectclass
          "30 2B 02 01 04 68 26 04 01 64 30 21 30 0B 04 04 6D 61 69 6C 31 03 04 01 6D "
          "30 12 04 0B 6F 62 6A 65 63 74 63 6C 61 73 73 31 03 04 01 6F\n"
          "30 0B 02 01 05 4A 06 47 55 49 44 3D 47\n"
          "30 05 02 01 06 42 00\n");
}
