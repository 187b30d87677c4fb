#include "ldap/LDAPTable.h"

#include <doctest/doctest.h>

#include "LdapTest.h"

namespace {

LDAPTable TableOf(std::initializer_list<const char*> values) {
    LDAPTable table;
    for (const char* value : values) {
        LDAPRow row;
        row.Field("v", "%s", value);
        table += row;
    }
    return table;
}

std::string Values(LDAPTable& table) {
    std::string values;
    for (LDAPRow& row : table.rows)
        values += std::string(row["v"]) + ";";
    return values;
}

}  // namespace

TEST_CASE("fields read as text, flag and number") {
    CHECK(static_cast<bool>(LDAPField("n", "1")));
    CHECK_FALSE(static_cast<bool>(LDAPField("n", "01")));
    CHECK(static_cast<int>(LDAPField("n", "42 apples")) == 42);
    CHECK(static_cast<int>(LDAPField("n", "apples")) == 0);
    CHECK(static_cast<int>(LDAPField("n", "99999999999999999999")) == 2147483647);
    CHECK(LDAPField("n", nullptr) == "");
}

TEST_CASE("rows find the first field of a name, and read as empty where there is none") {
    const Reports reports;
    LDAPRow row;
    row.Field("a", "%d", 1);
    row.fields.Append(new LDAPField("a", "second"));
    CHECK(row["a"] == "1");
    row.Field("a", "%s!", static_cast<char*>(row["a"]));
    CHECK(row["a"] == "1!");
    CHECK_FALSE(row.Has("A"));

    row.Get("missing").value = "spoilt";
    CHECK(reports.Empty());
    CHECK(row["missing"] == "");
    CHECK(reports.Has("LDAPRow Empty value has been changed to spoilt"));

    const LDAPRow copy(row);
    row.Rename("a", "b");
    CHECK(row["b"] == "1!");
    CHECK(row["a"] == "second");
    CHECK(copy.Find("a")->value == "1!");
    row = row;
    CHECK(row.fields.size() == 2);
    row.Print();
    CHECK(reports.Has("b=1!"));
}

TEST_CASE("tables sort by text, number or date, and equal rows keep their order") {
    const struct {
        const char* spec;
        std::initializer_list<const char*> values;
        const char* sorted;
    } cases[] = {
        {"v", {"2", "10", "x", "-1"}, "10;2;x;-1;"},
        {"-v", {"2", "10", "x", "-1"}, "10;2;x;-1;"},
        {"+v", {"2", "10", "99999999999999999999", "-1"}, "-1;2;10;99999999999999999999;"},
        {"+v", {"a", "0", "b"}, "a;0;b;"},
        {"-v", {"a", "0", "b"}, "a;0;b;"},
        {"+$v", {"beta", "Alpha", "alpha", "Gamma"}, "Alpha;alpha;beta;Gamma;"},
        {"$v", {"beta", "Alpha", "alpha", "Gamma"}, "Gamma;beta;Alpha;alpha;"},
        {"+$v",
         {"Member 00000010b", "member 00000010A", "member 0000001", "MEMBER", "member \xC3\xA9",
          "member 00000010a"},
         "MEMBER;member 0000001;member 00000010A;member 00000010a;Member 00000010b;"
         "member \xC3\xA9;"},
        {"$v", {"same 123456789", "same 12345678", "same"}, "same 123456789;same 12345678;same;"},
        {"+:v",
         {"09:00 1/1/2024", "10:00 31/12/2023", "10:00", "", "09:59  31/12/2023"},
         ";10:00;09:59  31/12/2023;10:00 31/12/2023;09:00 1/1/2024;"},
        {":v", {"09:00 1/1/2024", "09:00 1/2/2024"}, "09:00 1/2/2024;09:00 1/1/2024;"},
        {"", {"1", "2"}, "1;2;"},
        {nullptr, {"1", "2"}, "1;2;"},
        {"+other", {"2", "1"}, "2;1;"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.sorted);
        LDAPTable table = TableOf(c.values);
        table.Sort(c.spec);
        CHECK(Values(table) == c.sorted);
    }
}

TEST_CASE("tables copy, append and count") {
    LDAPTable table = TableOf({"1", "2"});
    table += table;
    CHECK(Values(table) == "1;2;1;2;");
    LDAPTable copy = TableOf({"x"});
    copy = table;
    table.Flush();
    CHECK(table.GetRowCount() == 0);
    CHECK(copy.GetRowCount() == 4);
    CHECK((*copy[1])["v"] == "2");
    CHECK(copy[4] == nullptr);
    CHECK(copy[-1] == nullptr);
    CHECK(copy.Find("v", "2") == copy[1]);
    CHECK(copy.Find("v", "3") == nullptr);
    copy.Rename("v", "w");
    CHECK(copy[3]->Has("w"));
}
