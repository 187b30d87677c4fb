#include "ldap/ldap_rx.h"

#include <doctest/doctest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>

#include "LdapTest.h"
#include "ldap/ldap_requests_rx.h"
#include "network/socketX.h"

namespace {

std::unique_ptr<LDAPMessage_rx> Decoded(const Bytes& bytes, int* err = nullptr) {
    return std::unique_ptr<LDAPMessage_rx>(LDAPMessage_rx::Decode(Message(bytes), err));
}

template <class T>
std::unique_ptr<T> DecodedAs(const Bytes& bytes) {
    auto message = Decoded(bytes);
    REQUIRE(dynamic_cast<T*>(message.get()) != nullptr);
    return std::unique_ptr<T>(static_cast<T*>(message.release()));
}

// Puts an operation into an envelope with the id 5.
Bytes Enveloped(const char* operationHex) {
    Bytes message = FromHex("02 01 05");
    const Bytes operation = FromHex(operationHex);
    message.insert(message.end(), operation.begin(), operation.end());
    REQUIRE(message.size() < 128);
    message.insert(message.begin(), {0x30, static_cast<unsigned char>(message.size())});
    return message;
}

// "name=value;" for each attribute.
std::string Attributes(LDAPSearchRes_rx& entry) {
    std::string all;
    char* name = nullptr;
    char* value = nullptr;
    for (int more = entry.FirstAttribute(name, value); more != 0;
         more = entry.NextAttribute(name, value))
        all += std::string(name) + "=" + value + ";";
    return all;
}

// Calls `check` with what GetMsg makes of these bytes, after which the peer closes.
void Receive(const Bytes& bytes,
             const std::function<void(std::unique_ptr<LDAPMessage_rx>, int, Socket&)>& check) {
    int ends[2];
    REQUIRE(socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0);
    const sockaddr_in peer = {};
    Socket socket(Socket::TCP_CLIENT, ends[0], &peer, int{sizeof peer});
    REQUIRE(write(ends[1], bytes.data(), bytes.size()) == ssize_t(bytes.size()));
    close(ends[1]);
    int err = 1;
    std::unique_ptr<LDAPMessage_rx> message(LDAPMessage_rx::GetMsg(&socket, &err));
    check(std::move(message), err, socket);
}

constexpr char kEntry[] =
    "64 19 04 01 64 30 14 30 08 04 01 61 31 03 04 01 78 30 08 04 01 62 31 03 04 01 79";

// One message of each kind that is understood.
const char* const kOperations[] = {
    "42 00",
    "4A 03 6F 3D 78",
    "60 09 02 01 02 04 01 75 80 01 70",
    "65 0C 0A 01 20 04 03 6F 3D 78 04 02 6E 6F",
    kEntry,
    "66 16 04 01 64 30 11 30 0F 0A 01 02 30 0A 04 01 61 31 05 04 03 01 00 02",
    "68 14 04 01 64 30 0F 30 0D 04 01 61 31 08 04 01 78 04 03 79 79 79",
    "6C 0C 04 01 64 04 04 63 6E 3D 65 01 01 FF",
};

}  // namespace

TEST_CASE("results carry code, name and text, and never read as success by mistake") {
    const struct {
        const char* what;
        const char* operation;
        int code;
        const char* text;
    } cases[] = {
        {"success", "61 07 0A 01 00 04 00 04 00", 0, ""},
        {"refused", "61 09 0A 01 31 04 00 04 02 6E 6F", 49, "no"},
        {"a referral behind it", "61 0B 0A 01 0A 04 00 04 02 6E 6F A3 00", 10, "no"},
        {"no content", "61 00", 2, ""},
        {"code of length 0", "61 06 0A 00 04 00 04 00", 2, ""},
        {"code is a text", "61 07 04 01 00 04 00 04 00", 2, ""},
        {"code is cut", "61 02 0A 01", 2, ""},
    };
    const Reports reports;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto result = DecodedAs<LDAPResult_rx>(Enveloped(c.operation));
        CHECK(result->msg_id == 5);
        CHECK(result->op_tag == 0x61);
        CHECK(result->resultCode == c.code);
        CHECK(Text(*result->errorMessage) == c.text);
    }
}

TEST_CASE("entries give their attributes, of each the first value") {
    const struct {
        const char* what;
        const char* operation;
        const char* attributes;
        const char* report;
    } cases[] = {
        {"two attributes", kEntry, "a=x;b=y;", ""},
        {"no attributes", "64 05 04 01 64 30 00", "", ""},
        {"a set without values",
         "64 16 04 01 64 30 11 30 05 04 01 61 31 00 30 08 04 01 62 31 03 04 01 79", "a=;b=y;", ""},
        {"two values",
         "64 1C 04 01 64 30 17 30 0B 04 01 61 31 06 04 01 78 04 01 7A 30 08 04 01 62 31 03 04 01 79",
         "a=x;b=y;", "LDAPSearchRes_rx: msg format error 2"},
        {"no name", "64 00", "", "LDAPSearchRes_rx: msg format error (no objectName)"},
        {"no list", "64 03 04 01 64", "", "LDAPSearchRes_rx: msg format error 1"},
        {"list ends early", "64 11 04 01 64 30 0A 30 08 04 01 61 31 03 04 01 78 05 00", "a=x;",
         "LDAPSearchRes_rx: msg format error 1"},
        {"list ends late", "64 0F 04 01 64 30 7F 30 08 04 01 61 31 03 04 01 78", "a=x;",
         "LDAPSearchRes_rx: msg format error 1"},
        {"attribute ends late", "64 0F 04 01 64 30 0A 30 7F 04 01 61 31 03 04 01 78", "a=x;",
         "LDAPSearchRes_rx: msg format error 3"},
        {"value ends late", "64 0F 04 01 64 30 0A 30 08 04 01 61 31 03 04 7F 78", "",
         "LDAPSearchRes_rx: msg format error 3"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Reports reports;
        const auto entry = DecodedAs<LDAPSearchRes_rx>(Enveloped(c.operation));
        CHECK(Attributes(*entry) == c.attributes);
        CHECK(Attributes(*entry) == c.attributes);
        CHECK((*c.report != '\0' ? reports.Has(c.report) : reports.Empty()));
    }
    const auto entry = DecodedAs<LDAPSearchRes_rx>(Enveloped(kEntry));
    CHECK(Text(*entry->objectName) == "d");
    CHECK(*entry->op_ptr == 0x64);
}

TEST_CASE("requests decode for a server") {
    const auto bind = DecodedAs<LDAPBindReq_rx>(Enveloped(kOperations[2]));
    CHECK(bind->version == 2);
    CHECK(Text(*bind->name) == "u");
    CHECK(Text(*bind->cred) == "p");
    CHECK(bind->method == 0);

    const auto modify = DecodedAs<LDAPModifyReq_rx>(Enveloped(kOperations[5]));
    CHECK(modify->valid != 0);
    CHECK(Text(*modify->object) == "d");
    REQUIRE(modify->modifications.size() == 1);
    CHECK(modify->modifications[0]->op == 2);
    CHECK(Text(*modify->modifications[0]->attr_name) == "a");
    REQUIRE(modify->modifications[0]->values.size() == 1);
    CHECK(Text(*modify->modifications[0]->values[0]) == std::string("\x01\0\x02", 3));

    const auto add = DecodedAs<LDAPAddReq_rx>(Enveloped(kOperations[6]));
    CHECK(add->valid != 0);
    CHECK(Text(*add->entry) == "d");
    REQUIRE(add->attributes.size() == 1);
    REQUIRE(add->attributes[0]->values.size() == 2);
    CHECK(Text(*add->attributes[0]->values[1]) == "yyy");

    CHECK(Text(*DecodedAs<LDAPDelReq_rx>(Enveloped(kOperations[1]))->entry) == "o=x");
    const auto rename = DecodedAs<LDAPModRDNReq_rx>(Enveloped(kOperations[7]));
    CHECK(Text(*rename->newrdn) == "cn=e");
    CHECK(rename->deleteoldrdn != 0);
    CHECK(DecodedAs<LDAPUnbindReq_rx>(Enveloped(kOperations[0]))->msg_id == 5);
}

TEST_CASE("requests that do not hold together say what is wrong and are not valid") {
    const struct {
        const char* what;
        const char* operation;
        const char* report;
    } cases[] = {
        {"no list", "66 03 04 01 64", "LDAPSearchReq_rx: attribute SEQ not found"},
        {"another tag", "66 05 04 01 64 31 00", "LDAPSearchReq_rx: attribute SEQ not found"},
        {"operation", "66 08 04 01 64 30 03 30 01 0A", "LDAPModification_rx: format error 1"},
        {"type", "66 0C 04 01 64 30 07 30 05 0A 01 02 30 00",
         "LDAPModification_rx: format error 2"},
        {"values", "66 0F 04 01 64 30 0A 30 08 0A 01 02 30 03 04 01 61",
         "LDAPModification_rx: format error 3"},
        {"rest", "66 07 04 01 64 30 00 05 00", "LDAPSearchRes_rx: msg format error 3"},
        {"add: no list", "68 03 04 01 64", "LDAPAddReq_rx: attribute SEQ not found"},
        {"add: type", "68 07 04 01 64 30 02 30 00", "LDAPAddAttr_rx: format error 1"},
        {"add: values", "68 0A 04 01 64 30 05 30 03 04 01 61", "LDAPAddAttr_rx: format error 2"},
        {"add: rest", "68 07 04 01 64 30 00 05 00", "LDAPAddReq_rx: msg format error"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Reports reports;
        const auto message = Decoded(Enveloped(c.operation));
        REQUIRE(message != nullptr);
        CHECK(message->valid == 0);
        CHECK(reports.Has(c.report));
    }
    // A name that is cut is another name: deleting it would hit the wrong entry.
    CHECK(Decoded(Enveloped("4A 05 6F 3D 78"))->valid == 0);
}

TEST_CASE("what is not understood gives no message, and only broken ones are an error") {
    const struct {
        const char* what;
        Bytes message;
        int err;
        const char* report;
    } cases[] = {
        {"abandon", Enveloped("50 01 04"), 0, "LDAPMessage_rx::GetMsg: add support for 0x50 !"},
        {"compare", Enveloped("6E 00"), 0, "LDAPMessage_rx::GetMsg: add support for 0x6e !"},
        {"search", Enveloped("63 00"), 0, "LDAPMessage_rx::GetMsg: unexpected op tag 0x63"},
        {"reference", Enveloped("73 00"), 0, "LDAPMessage_rx::GetMsg: unexpected op tag 0x73"},
        {"bind with another method", Enveloped("60 09 02 01 02 04 01 75 83 01 70"), -5,
         "LDAPBindReq_rx: bad packet format"},
        {"bind without credentials", Enveloped("60 06 02 01 02 04 01 75"), -5,
         "LDAPBindReq_rx: bad packet format"},
        {"id is a text", FromHex("30 05 04 01 05 42 00"), -5, "unexpected tag: 0x04"},
        {"id is a boolean", FromHex("30 05 01 01 05 42 00"), -5, ""},
        {"nothing behind the id", FromHex("30 03 02 01 05"), -5, ""},
        {"no sequence", FromHex("31 05 02 01 05 42 00"), -5, ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Reports reports;
        int err = 1;
        CHECK(Decoded(c.message, &err) == nullptr);
        CHECK(err == c.err);
        CHECK(reports.Has(c.report));
    }
}

TEST_CASE(
    "no message makes the decoder read beyond its bytes, cut at any place or lying anywhere") {
    const Reports reports;
    for (const char* operation : kOperations) {
        const Bytes whole = Enveloped(operation);
        for (size_t size = 0; size < whole.size(); ++size) {
            Decoded(Bytes(whole.data(), whole.data() + size));
            for (const int lie : {0x00, 0x7F, 0x80, 0x81, 0x84, 0x85, 0xFF}) {
                Bytes changed = whole;
                changed[size] = static_cast<unsigned char>(lie);
                const auto message = Decoded(changed);
                if (auto* entry = dynamic_cast<LDAPSearchRes_rx*>(message.get()))
                    Attributes(*entry);
            }
        }
    }
}

TEST_CASE("one message is read from the stream, and the next one stays there") {
    Bytes stream = Enveloped("65 07 0A 01 00 04 00 04 00");
    const Bytes second = FromHex("30 84 00 00 00 05 02 01 06 42 00");
    stream.insert(stream.end(), second.begin(), second.end());
    Receive(stream, [](std::unique_ptr<LDAPMessage_rx> message, int err, Socket& socket) {
        REQUIRE(message != nullptr);
        CHECK(err == 0);
        CHECK(message->msg_id == 5);
        const std::unique_ptr<LDAPMessage_rx> next(LDAPMessage_rx::GetMsg(&socket, nullptr));
        REQUIRE(next != nullptr);
        CHECK(next->msg_id == 6);
        CHECK(LDAPMessage_rx::GetMsg(&socket, &err) == nullptr);
        CHECK(err == -110);
    });
}

TEST_CASE("a stream that breaks off, or is no stream of messages, gives an error") {
    const Bytes whole = Enveloped("65 07 0A 01 00 04 00 04 00");
    for (size_t size = 0; size < whole.size(); ++size) {
        CAPTURE(size);
        Receive(Bytes(whole.data(), whole.data() + size),
                [](std::unique_ptr<LDAPMessage_rx> message, int err, Socket&) {
                    CHECK(message == nullptr);
                    CHECK(err == -110);
                });
    }
    const struct {
        const char* hex;
        const char* report;
    } cases[] = {
        {"04 05 02 01 05 42 00", "LDAPMessage::GetMsg: unexpected tag 0x04 from 0.0.0.0"},
        {"30 00 02 01 05 42 00", "impossible size 2"},
        {"30 83 00 FF FB 42 00", "impossible size 0"},
        {"30 84 FF FF FF FA 00", "impossible size 0"},
        {"30 85 00 00 00 00 05", "ASN1Type::GetLen: length too long: 6"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.hex);
        const Reports reports;
        Receive(FromHex(c.hex), [&](std::unique_ptr<LDAPMessage_rx> message, int err, Socket&) {
            CHECK(message == nullptr);
            CHECK(err == -5);
            CHECK(reports.Has(c.report));
        });
    }
}

TEST_CASE("sizes count modulo 65536") {
    // Announces 65536 + 20 bytes in all: 20 are taken.
    Bytes stream = FromHex("30 83 01 00 0F 02 01 05 65 0A 0A 01 00 04 00 04 03 61 62 63");
    REQUIRE(stream.size() == 20);
    const Bytes second = FromHex("30 05 02 01 06 42 00");
    stream.insert(stream.end(), second.begin(), second.end());
    Receive(stream, [](std::unique_ptr<LDAPMessage_rx> message, int, Socket& socket) {
        const auto* result = dynamic_cast<LDAPResult_rx*>(message.get());
        REQUIRE(result != nullptr);
        CHECK(Text(*result->errorMessage) == "abc");
        const std::unique_ptr<LDAPMessage_rx> next(LDAPMessage_rx::GetMsg(&socket, nullptr));
        REQUIRE(next != nullptr);
        CHECK(next->msg_id == 6);
    });
}
