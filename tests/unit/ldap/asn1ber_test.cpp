#include "ldap/asn1ber.h"

#include <doctest/doctest.h>

#include <climits>

#include "LdapTest.h"
#include "ldap/BerCursor.h"

TEST_CASE("integers take the sizes that peers are used to, and decode to themselves") {
    const struct {
        int value;
        const char* encoded;
    } cases[] = {
        {0, "02 01 00"},
        {127, "02 01 7F"},
        {128, "02 02 00 80"},
        {32767, "02 02 7F FF"},
        {32768, "02 03 00 80 00"},
        {8388607, "02 03 7F FF FF"},
        {8388608, "02 04 00 80 00 00"},
        {INT_MAX, "02 04 7F FF FF FF"},
        {-1, "02 01 FF"},
        {-128, "02 01 80"},
        {-129, "02 02 FF 7F"},
        {-32513, "02 02 80 FF"},
        {-32514, "02 03 FF 80 FE"},
        {-8323073, "02 03 80 FF FF"},
        {-8323074, "02 04 FF 80 FF FE"},
        {INT_MIN, "02 04 80 00 00 00"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.value);
        ASN1Integer integer(c.value);
        CHECK(Encoded(integer) == c.encoded);
        Bytes bytes = FromHex(c.encoded);
        unsigned char* p = bytes.data();
        const ASN1Integer decoded(p);
        CHECK(decoded == integer);
        CHECK(p == bytes.data() + bytes.size());
    }
    ASN1Enumerated enumerated(2);
    CHECK(Encoded(enumerated) == "0A 01 02");
    ASN1Boolean yes(1);
    CHECK(Encoded(yes) == "01 01 01");
}

TEST_CASE("lengths use the shortest form that holds them, and are read back") {
    const struct {
        unsigned long length;
        const char* octets;
    } cases[] = {
        {0, "00"},
        {127, "7F"},
        {128, "81 80"},
        {255, "81 FF"},
        {256, "82 01 00"},
        {65535, "82 FF FF"},
        {65536, "83 01 00 00"},
        {16777215, "83 FF FF FF"},
        {16777216, "84 01 00 00 00"},
        {0xFFFFFFFF, "84 FF FF FF FF"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.length);
        ASN1Null element;
        element.SetLength(c.length);
        CHECK(ToHex(element.coded_length, element.lenlen) == c.octets);
        CHECK(element.Length() == 1 + element.lenlen + c.length);

        ASN1Null read;
        const Bytes octets = FromHex(c.octets);
        read.GetLen(octets.data());
        CHECK(read.length == c.length);
        CHECK(read.lenlen == element.lenlen);
    }
}

TEST_CASE("0x80 reads as 128, and more than four octets of length are refused unread") {
    ASN1Null element;
    const unsigned char indefinite[] = {0x80};
    element.GetLen(indefinite);
    CHECK(element.length == 128);
    CHECK(element.lenlen == 1);

    const Reports reports;
    const unsigned char tooMany[] = {0x85};
    element.GetLen(tooMany);
    CHECK(element.length == 128);
    CHECK(element.lenlen == 6);
    CHECK(reports.Has("ASN1Type::GetLen: length too long: 6"));
}

TEST_CASE("elements measure and encode as trees") {
    ASN1Null null;
    CHECK(null.Length() == 2);
    CHECK(Encoded(null) == "05 00");

    ASN1String longText(std::string(200, 'x').c_str(), 0);
    CHECK(longText.Length() == 203);
    CHECK(Encoded(longText).starts_with("04 81 C8 78"));

    const unsigned char raw[] = {'a', 0, 'b'};
    ASN1String binary(raw, sizeof raw);
    CHECK(Encoded(binary) == "04 03 61 00 62");

    ASN1Sequence sequence;
    sequence.Add2Seq(new ASN1Integer(3));
    sequence.Add2Seq(new ASN1Null);
    CHECK(sequence.Length() == 7);
    CHECK(Encoded(sequence) == "30 05 02 01 03 05 00");
    sequence.Adopt(new ASN1Set).Add2Seq(new ASN1Boolean(0));
    CHECK(Encoded(sequence) == "30 0A 02 01 03 05 00 31 03 01 01 00");

    const Reports reports;
    sequence.Add2Seq(nullptr);
    CHECK(reports.Has("ASN1Sequence::Add2Seq: attempt to add null object"));
    CHECK(Encoded(sequence) == "30 0A 02 01 03 05 00 31 03 01 01 00");
}

TEST_CASE("hex escapes become bytes, and broken ones are reported and never read past the end") {
    const struct {
        const char* text;
        const char* encoded;
        const char* report;
    } cases[] = {
        {"a\\2Ab", "04 03 61 2A 62", ""},
        {"\\00\\ff", "04 02 00 FF", ""},
        {"\\4z!", "04 02 04 21", "ASN1String::ASN1String: invalid hex escape sequence \\4z"},
        {"\\zz!", "04 02 00 21", "ASN1String::ASN1String: invalid hex escape sequence \\zz"},
        {"\\z4!", "04 02 00 21", "ASN1String::ASN1String: invalid hex escape sequence \\z4"},
        {"a\\4", "04 02 61 04", "ASN1String::ASN1String: invalid hex escape sequence \\4"},
        {"a\\", "04 02 61 00", "ASN1String::ASN1String: invalid hex escape sequence \\"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        const Reports reports;
        const auto exact = std::make_unique<char[]>(std::strlen(c.text) + 1);
        std::memcpy(exact.get(), c.text, std::strlen(c.text));
        ASN1String string(exact.get(), 1);
        CHECK(Encoded(string) == c.encoded);
        CHECK((*c.report != '\0' ? reports.Has(c.report) : reports.Empty()));
    }
    ASN1String verbatim("a\\2A", 0);
    CHECK(Encoded(verbatim) == "04 04 61 5C 32 41");
    ASN1String nothing(static_cast<const char*>(nullptr), 1);
    CHECK(Encoded(nothing) == "04 00");
}

TEST_CASE("elements decode from a cursor, and not from one that is cut anywhere") {
    const struct {
        const char* what;
        const char* hex;
        const char* content;
    } cases[] = {
        {"short", "04 02 61 62", "ab"},
        {"long form of a short length", "80 84 00 00 00 02 61 62", "ab"},
        {"empty", "04 00", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Bytes whole = FromHex(c.hex);
        BerCursor in(whole.data(), whole.size());
        const ASN1String string(in);
        CHECK(in.ok());
        CHECK(in.empty());
        CHECK(string.tag == whole[0]);
        CHECK(Text(string) == c.content);
        for (size_t size = 0; size < whole.size(); ++size) {
            const Bytes cut(whole.data(), whole.data() + size);
            BerCursor shortIn(cut.data(), cut.size());
            const ASN1String broken(shortIn);
            CHECK_FALSE(shortIn.ok());
            CHECK(Text(broken).empty());
        }
    }
    const Bytes integer = FromHex("02 84 00 00 00 02 FF 7F");
    for (size_t size = 0; size <= integer.size(); ++size) {
        const Bytes cut(integer.data(), integer.data() + size);
        BerCursor in(cut.data(), cut.size());
        const ASN1Integer decoded(in);
        CHECK(in.ok() == (size == integer.size()));
        CHECK(decoded.val == (in.ok() ? -129 : 0));
    }
}

TEST_CASE("what is no integer is reported, and the reader stops where it noticed") {
    const struct {
        const char* hex;
        const char* report;
        int moved;
    } cases[] = {
        {"02 05 01 02 03 04 05", "ASN1Integer::ASN1Integer: invalid length 5", 1},
        {"02 00 01", "ASN1Integer::ASN1Integer: invalid length 0", 1},
        {"02 84 FF FF FF FF", "ASN1Integer::ASN1Integer: invalid length -1", 1},
        {"02 85 00 00", "ASN1Type::GetLen: length too long: 6", 1},
        {"04 02 61 62", "ASN1Integer::ASN1Integer: unexpected tag: 0x04", 1},
    };
    for (const auto& c : cases) {
        CAPTURE(c.hex);
        Bytes bytes = FromHex(c.hex);
        {
            const Reports reports;
            BerCursor in(bytes.data(), bytes.size());
            const ASN1Integer integer(in);
            CHECK(integer.val == 0);
            CHECK_FALSE(in.ok());
            CHECK(reports.Has(c.report));
        }
        const Reports reports;
        unsigned char* p = bytes.data();
        const ASN1Integer integer(p);
        CHECK(p - bytes.data() == c.moved);
    }
}

TEST_CASE("a cursor refuses contents that are not there, and can cut them to what is") {
    const Bytes bytes = FromHex("30 05 01 02 03");
    BerHeader header;
    BerCursor strict(bytes.data(), bytes.size());
    CHECK_FALSE(strict.ReadHeader(header));
    CHECK(strict.left() == bytes.size());
    CHECK_FALSE(strict.ok());

    BerCursor lenient(bytes.data(), bytes.size());
    bool cut = false;
    REQUIRE(lenient.ReadHeaderCut(header, cut));
    CHECK(cut);
    CHECK(header.length == 3);
    BerCursor content = lenient.Take(99);
    CHECK(content.left() == 3);
    CHECK(lenient.empty());
    uint8_t tag = 0;
    CHECK_FALSE(lenient.ReadTag(tag));
}
