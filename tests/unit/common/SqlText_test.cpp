#include "common/SqlText.h"

#include <doctest/doctest.h>

#include <string>

#include "common/UStringX.h"

namespace {

constexpr char kNamedSql[] =
    "SELECT id FROM t WHERE name='%s' AND day LIKE '%s%%' AND n IN(%d,%i,%ld,%lld) %s";

}  // namespace

TEST_CASE("statements hold their values escaped, fragments as they are, numbers in decimal") {
    const SqlText all(kNamedSql, SqlQuoted("O'Brien\\"), SqlQuoted(UString("\"x\"")), -1, 2,
                      3000000000L, 9223372036854775807LL, SqlFragment("ORDER BY id"));
    CHECK(std::string(all.c_str()) ==
          "SELECT id FROM t WHERE name='O\\'Brien\\\\' AND day LIKE '\\\"x\\\"%' AND n "
          "IN(-1,2,3000000000,9223372036854775807) ORDER BY id");
    CHECK(all.length() == std::string(all.c_str()).size());

    // A value's own per cent signs are data.
    CHECK(std::string(SqlText("'%s'", SqlQuoted("50%s %d %%")).c_str()) == "'50%s %d %%'");
    CHECK(std::string(SqlText("DATE_FORMAT(d,'%%Y')").c_str()) == "DATE_FORMAT(d,'%Y')");
    CHECK(std::string(SqlText("'%s'", SqlQuoted(nullptr)).c_str()) == "''");
    CHECK(std::string(SqlText::FromTemplate("a '%Y' %s").c_str()) == "a '%Y' %s");
}

TEST_CASE("a format that does not fit its arguments is refused") {
    constexpr SqlArgument kQuoted[] = {SqlArgument::kQuoted, SqlArgument::kQuoted};
    constexpr SqlArgument kFragment[] = {SqlArgument::kFragment};
    constexpr SqlArgument kInt[] = {SqlArgument::kInt};
    constexpr SqlArgument kOther[] = {kSqlArgument<const char*>};
    const struct {
        const char* what;
        const char* format;
        const SqlArgument* arguments;
        size_t count;
        bool fits;
    } cases[] = {
        {"no arguments", "SELECT 1", nullptr, 0, true},
        {"quoted in either quotes", "'%s' \"%s\"", kQuoted, 2, true},
        {"behind an escaped quote", "'it\\'s %s'", kQuoted, 1, true},
        {"behind a doubled quote", "'it''s %s'", kQuoted, 1, true},
        {"fragment anywhere", "WHERE %s", kFragment, 1, true},
        {"bare value", "WHERE id=%s", kQuoted, 1, false},
        {"value behind the closed quote", "'a' %s", kQuoted, 1, false},
        {"value in a name's quotes", "`%s`", kQuoted, 1, false},
        {"plain text", "'%s'", kOther, 1, false},
        {"too few", "'%s'", nullptr, 0, false},
        {"too many", "'%s'", kQuoted, 2, false},
        {"text for a number", "%d", kQuoted, 1, false},
        {"number for a text", "'%s'", kInt, 1, false},
        {"int for a long", "%ld", kInt, 1, false},
        {"bare date format", "DATE_FORMAT(d,'%Y')", nullptr, 0, false},
        {"per cent at the end", "LIKE '%", nullptr, 0, false},
        {"a width", "%05d", kInt, 1, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK((SqlFormatProblem(c.format, c.arguments, c.count) == nullptr) == c.fits);
    }
    static_assert(SqlFormatProblem("%s", kQuoted, 1) != nullptr);
}
