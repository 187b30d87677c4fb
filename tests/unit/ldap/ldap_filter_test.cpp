#include "ldap/ldap_filter.h"

#include <doctest/doctest.h>

#include <string>

#include "LdapTest.h"

// Where a case is a valid filter for others too, the bytes are those that OpenLDAP's ldapsearch
// sends.
TEST_CASE("filters encode as their text says") {
    const struct {
        const char* text;
        const char* encoded;
    } cases[] = {
        {"(cn=*)", "87 02 63 6E"},
        {"(cn=ab)", "A3 08 04 02 63 6E 04 02 61 62"},
        {"(&(a=1)(b=2))", "A0 10 A3 06 04 01 61 04 01 31 A3 06 04 01 62 04 01 32"},
        {"(|(a=1)(b=*))", "A1 0B A3 06 04 01 61 04 01 31 87 01 62"},
        {"(!(a=1))", "A2 08 A3 06 04 01 61 04 01 31"},
        {"(&(|(a=1))(!(b=*)))", "A0 0F A1 08 A3 06 04 01 61 04 01 31 A2 03 87 01 62"},
        {"(cn>=5)", "A5 07 04 02 63 6E 04 01 35"},
        {"(cn<=5)", "A6 07 04 02 63 6E 04 01 35"},
        {"(x=\\2A)", "A3 06 04 01 78 04 01 2A"},
        {"(cn=\\00x)", "A3 08 04 02 63 6E 04 02 00 78"},
        {"(cn=)", "A3 06 04 02 63 6E 04 00"},
        {"(cn=ab*)", "A4 0A 04 02 63 6E 30 04 80 02 61 62"},
        {"(cn=*ab)", "A4 0A 04 02 63 6E 30 04 82 02 61 62"},
        {"(cn=*a*)", "A4 09 04 02 63 6E 30 03 81 01 61"},
        {"(cn=a*b*c)", "A4 0F 04 02 63 6E 30 09 80 01 61 81 01 62 82 01 63"},
        {"(cn=a\\2A*\\2Ab)", "A4 0E 04 02 63 6E 30 08 80 02 61 2A 82 02 2A 62"},
        // From here on the rules are this system's own.
        {"(cn>=*)", "A5 07 04 02 63 6E 04 01 2A"},
        {"(!(a=1)(b=*))", "A2 0B A3 06 04 01 61 04 01 31 87 01 62"},
        {"(cn=a**b)", "A4 09 04 02 63 6E 30 03 80 01 61"},
        {"(cn=**)", "A4 06 04 02 63 6E 30 00"},
        {"(cn=*a**b)", "A4 09 04 02 63 6E 30 03 81 01 61"},
        {"(cn~=ab)", "A3 09 04 03 63 6E 7E 04 02 61 62"},
        {"(>=5)", "A5 05 04 00 04 01 35"},
        {"(a=b=c)", "A3 08 04 01 61 04 03 62 3D 63"},
        {"(cn=ab)trailing", "A3 08 04 02 63 6E 04 02 61 62"},
        {"(cn=a\\29)", "A3 08 04 02 63 6E 04 02 61 29"},
        {"(&(a=)(b=2))", "A0 0F A3 05 04 01 61 04 00 A3 06 04 01 62 04 01 32"},
        {"(&(b=2)(a=))", "A0 0F A3 06 04 01 62 04 01 32 A3 05 04 01 61 04 00"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        const Reports reports;
        LDAPFilter_tx filter(c.text);
        REQUIRE(filter.valid != 0);
        CHECK(Encoded(filter) == ToHex(FromHex(c.encoded).data(), FromHex(c.encoded).size()));
        CHECK(*filter.end_of_filter == ')');
        CHECK(filter.end_of_filter - filter.source_str.c_str() + 1 == filter.src_len);
        CHECK(reports.Empty());
    }
}

TEST_CASE("what is no filter is not valid and says why") {
    const struct {
        const char* text;
        const char* report;
    } cases[] = {
        {"cn=xy", "LDAPFilter_tx: filter parse error cn=xy"},
        {"(cn=x", "LDAPFilter_tx: filter parse error (cn=x"},
        {"(a=)", "LDAPFilter_tx: filter too short (a=)"},
        {"", "LDAPFilter_tx: filter too short "},
        {nullptr, "LDAPFilter_tx: filter too short "},
        {"(=abc)", "LDAPFilter_tx: filter parse error (=abc)"},
        {"(abcd)", "LDAPFilter_tx: filter parse error (abcd)"},
        {"(&(a=1) (b=2))", "LDAPFilter_tx: filter parse error  (b=2))"},
        {"(&(a=1)x)", "LDAPFilter_tx: filter too short x)"},
        {"(|(cn=x)(cnxx))", "LDAPFilter_tx: filter parse error (cnxx))"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.report);
        const Reports reports;
        const LDAPFilter_tx filter(c.text);
        CHECK(filter.valid == 0);
        CHECK(reports.Has(c.report));
    }
}

TEST_CASE("filters nest 100 deep and no deeper, and a broken escape stays inside") {
    const auto nested = [](int levels) {
        std::string text;
        for (int i = 1; i < levels; ++i)
            text += "(!";
        return text + "(a=b)" + std::string(levels - 1, ')');
    };
    const Reports reports;
    CHECK(LDAPFilter_tx(nested(100).c_str()).valid != 0);
    CHECK(LDAPFilter_tx(nested(101).c_str()).valid == 0);
    CHECK(LDAPFilter_tx(nested(100000).c_str()).valid == 0);
    CHECK(LDAPFilter_tx((std::string(100000, '(') + "=").c_str()).valid == 0);

    LDAPFilter_tx escape("(cn=a\\)");
    CHECK(Encoded(escape) == "A3 08 04 02 63 6E 04 02 61 00");
    CHECK(reports.Has("invalid hex escape sequence"));
}
