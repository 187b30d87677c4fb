#include "ldap/ldap_tx.h"

#include <doctest/doctest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "LdapTest.h"
#include "ldap/LDAPMod.h"
#include "network/socketX.h"

TEST_CASE("requests encode as other clients encode them") {
    const auto check = [](const char* what, ASN1Type* operation, const char* expected) {
        CAPTURE(what);
        LDAPMessage_tx message(5);
        message.Add2Seq(operation);
        CHECK(Encoded(message) == expected);
    };
    const char* const attributes[] = {"cn", nullptr};
    LDAPMod mods[4];
    mods[0].Set("a", "x");
    const char* const texts[] = {"y", "zz", nullptr};
    mods[1].mod_op = LDAPMod::kAdd;
    mods[1].mod_type = "b";
    mods[1].mod_vals.modv_strvals = texts;
    mods[2].mod_op = LDAPMod::kDelete;
    mods[2].mod_type = "c";

    check("bind", new LDAPBindReq_tx("u", "p", 0),
          "30 0E 02 01 05 60 09 02 01 02 04 01 75 80 01 70");
    check("unbind", new LDAPUnbindReq_tx, "30 05 02 01 05 42 00");
    check("search", new LDAPSearchReq_tx("o=x", 2, 0, 10, 300, 0, "(cn=ab)", attributes),
          "30 2A 02 01 05 63 25 04 03 6F 3D 78 0A 01 02 0A 01 00 02 01 0A 02 02 01 2C 01 01 00 "
          "A3 08 04 02 63 6E 04 02 61 62 30 04 04 02 63 6E");
    check("search without list", new LDAPSearchReq_tx("", 0, 0, 0, 0, 1, "(cn=*)", nullptr),
          "30 1C 02 01 05 63 17 04 00 0A 01 00 0A 01 00 02 01 00 02 01 00 01 01 01 87 02 63 6E "
          "30 00");
    check("modify", new LDAPModifyReq_tx("d", mods),
          "30 38 02 01 05 66 33 04 01 64 30 2E "
          "30 0D 0A 01 02 30 08 04 01 61 31 03 04 01 78 "
          "30 11 0A 01 00 30 0C 04 01 62 31 07 04 01 79 04 02 7A 7A "
          "30 0A 0A 01 01 30 05 04 01 63 31 00");
    check("delete", new LDAPDelReq_tx("d"), "30 06 02 01 05 4A 01 64");
    check("rename", new LDAPModRDNReq_tx("d", "cn=e"),
          "30 11 02 01 05 6C 0C 04 01 64 04 04 63 6E 3D 65 01 01 00");

    const LDAPBinaryValue value = {3, "\x01\0\x02"};
    const LDAPBinaryValue* const values[] = {&value, nullptr};
    mods[1].mod_type = nullptr;
    mods[0].mod_op = LDAPMod::kReplace | LDAPMod::kBinary;
    mods[0].mod_vals.modv_bvals = values;
    check("add with binary value", new LDAPAddReq_tx("d", mods),
          "30 16 02 01 05 68 11 04 01 64 30 0C 30 0A 04 01 61 31 05 04 03 01 00 02");
    check("empty modify", new LDAPModifyReq_tx("d", nullptr),
          "30 0A 02 01 05 66 05 04 01 64 30 00");
}

TEST_CASE("responses encode as other servers encode them") {
    LDAPResult_tx result(0x65, 32, "o=x", "no");
    CHECK(Encoded(result) == "65 0C 0A 01 20 04 03 6F 3D 78 04 02 6E 6F");

    auto attributes = std::make_unique<ASN1Sequence>();
    ASN1Sequence& attribute = attributes->Adopt(new ASN1Sequence);
    attribute.Add2Seq(new ASN1String("cn", 0));
    attribute.Adopt(new ASN1Set).Add2Seq(new ASN1String("x", 0));
    LDAPSearchResp_tx entry("d", attributes.release());
    CHECK(Encoded(entry) == "64 10 04 01 64 30 0B 30 09 04 02 63 6E 31 03 04 01 78");
}

TEST_CASE("a search whose filter cannot be read is not valid") {
    const Reports reports;
    CHECK(LDAPSearchReq_tx("", 2, 0, 0, 0, 0, "cn=xy", nullptr).valid == 0);
    CHECK(LDAPSearchReq_tx("", 2, 0, 0, 0, 0, "(cn=x)", nullptr).valid != 0);
}

TEST_CASE("messages of any size arrive whole, written at once or queued") {
    const size_t limit = kKernelCfg.buf_size[3] - 100;
    for (const size_t size :
         {size_t{1}, limit - 12, limit - 11, limit - 10, 3 * limit, 3 * limit + 7}) {
        for (const int queue : {0, 1}) {
            CAPTURE(size);
            CAPTURE(queue);
            int ends[2];
            REQUIRE(socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0);
            const sockaddr_in peer = {};
            Socket near(Socket::TCP_CLIENT, ends[0], &peer, int{sizeof peer});
            Socket far(Socket::TCP_CLIENT, ends[1], &peer, int{sizeof peer});

            const std::string name(size, 'x');
            LDAPMessage_tx message(7);
            message.Add2Seq(new LDAPDelReq_tx(name.c_str()));
            CHECK(message.Send(&near, queue) == 0);
            if (queue != 0) {
                CHECK(near.queue.size() == (message.Length() + limit - 1) / limit);
                CHECK(near.FlushQueue(/*log=*/false) == 0);
            }
            Bytes received(message.Length());
            REQUIRE(far.RecWait(received.data(), static_cast<int>(received.size())) == 0);
            CHECK(ToHex(received.data(), received.size()) == Encoded(message));
        }
    }
}
