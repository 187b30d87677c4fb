#include "common/UStringX.h"

#include <doctest/doctest.h>

#include <cstring>
#include <memory>
#include <string>

#include "kernel/OSMemPool.h"
#include "unit/Reports.h"

namespace {

// A heap that counts its blocks and gives none that is larger than `limit`.
class CountingPool : public OSMemPool {
  public:
    CountingPool() { UString::mempool = this; }
    ~CountingPool() override { UString::mempool = nullptr; }
    CountingPool(const CountingPool&) = delete;
    CountingPool& operator=(const CountingPool&) = delete;
    void* Allocate(size_t bytes) override {
        if (bytes > limit) return nullptr;
        ++taken;
        return std::malloc(bytes);
    }
    void Free(void* block) override {
        if (block != nullptr) ++given;
        std::free(block);
    }

    size_t limit = SIZE_MAX;
    int taken = 0;
    int given = 0;
};

std::string Wide(const UString& text) {
    std::string units;
    for (const wchar_t* at = text; *at != L'\0'; ++at)
        units += std::to_string(static_cast<uint32_t>(*at)) + " ";
    return units;
}

}  // namespace

TEST_CASE("a string without a buffer reads as the empty text everywhere") {
    const UString none;
    CHECK(none.GetLength() == 0);
    CHECK(none.IsEmpty());
    CHECK(static_cast<char*>(none) != nullptr);
    CHECK(std::strcmp(none.c_str(), "") == 0);
    CHECK(*static_cast<wchar_t*>(none) == L'\0');
    CHECK(none[3] == '\0');
    CHECK(none == "");
    CHECK(std::strcmp(none.Mid(0), "") == 0);
    CHECK(none + none == "");
    UString trimmed;
    trimmed.Trim();
    trimmed.StripNonNumeric();
    CHECK(trimmed.buffer == nullptr);
}

TEST_CASE("capacities go up in steps, exactly from 8192 on, and never down") {
    const struct {
        int asked;
        int capacity;
    } cases[] = {{-5, 64},     {0, 64},      {63, 64},     {64, 128},    {127, 128},
                 {128, 256},   {255, 256},   {256, 1024},  {1023, 1024}, {1024, 4096},
                 {4096, 8192}, {8191, 8192}, {8192, 8193}, {9999, 10000}};
    for (const auto& c : cases) {
        CAPTURE(c.asked);
        UString text;
        text.Allocate(c.asked);
        CHECK(text.buffer_size == c.capacity);
        CHECK(text.IsEmpty());
        text.wAllocate(c.asked);
        CHECK(text.wbuffer_size == c.capacity);
    }

    UString text("abc");
    text.SetLength(200);
    CHECK(text == "abc");
    text = static_cast<const char*>(nullptr);
    CHECK(text.IsEmpty());
    text.Allocate(10);
    CHECK(text.buffer_size == 256);
    text.Free();
    CHECK(text.buffer == nullptr);
    text = "new";
    CHECK(text == "new");
    CHECK(text.buffer_size == 64);
}

TEST_CASE("copies own a buffer, moves leave none, and null sources empty") {
    const UString none;
    const UString copy(none);
    REQUIRE(copy.buffer != nullptr);
    CHECK(copy.buffer_size == 64);

    UString source("text");
    const char* block = source.buffer;
    UString target(std::move(source));
    CHECK(target.buffer == block);
    CHECK(source.buffer == nullptr);  // NOLINT(bugprone-use-after-move): a promise of the class
    source = "again";
    target = std::move(source);
    CHECK(target == "again");
    target = *&target;
    CHECK(target == "again");
    target = none;
    CHECK(target.IsEmpty());
    CHECK(target.buffer_size == 64);

    CHECK(UString(static_cast<const char*>(nullptr)).buffer == nullptr);
    CHECK(UString(static_cast<const wchar_t*>(nullptr)).buffer == nullptr);
    const unsigned char bytes[] = "abc";
    target = bytes;
    CHECK(target == "abc");
    target = static_cast<const wchar_t*>(nullptr);
    CHECK(target.IsEmpty());
}

TEST_CASE("an argument may be text of the string itself") {
    UString text("0123456789");
    for (int i = 0; i < 4; ++i)
        text += text;
    CHECK(text.GetLength() == 160);
    text = text.Mid(158);
    CHECK(text == "89");
    for (int i = 0; i < 31; ++i)
        text += "ab";
    REQUIRE(text.GetLength() == 64);
    text.Append(text.Mid(62), 2);
    CHECK(std::strcmp(text.Mid(60), "ababab") == 0);
    text.Free();
    text = "(a)";
    CHECK(text.SlashHex(text) == "\\28a\\29");
    text.Format("%s|%s", text.c_str(), text.Mid(4));
    CHECK(text == "\\28a\\29|\\29");
    CHECK(text.Replace(text.Mid(8), text));
    CHECK(text == "\\28a\\28a\\29|\\29|\\29");
    text.AppendSafe(text.Mid(9));
    CHECK(std::strcmp(text.Mid(16), "\\2929|\\29|\\29") == 0);
}

TEST_CASE("the wide copy follows the text and stops at malformed bytes") {
    UString text("a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80");
    CHECK(Wide(text) == "97 233 8364 128512 ");
    const wchar_t* cached = text;
    CHECK(static_cast<wchar_t*>(text) == cached);
    text += 'b';
    CHECK(Wide(text) == "97 233 8364 128512 98 ");
    text = "ok\xff tail";
    CHECK(Wide(text) == "111 107 ");
    text = "cut\xe2\x82";
    CHECK(Wide(text) == "99 117 116 ");
    text.buffer[0] = 'C';
    text.Dirty();
    CHECK(Wide(text) == "67 117 116 ");

    CHECK(UString(L"a\u00e9\u20ac\U0001F600") == "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80");
    const wchar_t beyond[] = {0x110000, -1, L'x', L'\0'};
    text = beyond;
    CHECK(text == "\xef\xbf\xbd\xef\xbf\xbdx");
}

TEST_CASE("offsets are cut to the text and reach into its buffer") {
    const UString text("abc");
    CHECK(text.Mid(1) == text.buffer + 1);
    CHECK(text.Mid(-1) == text.buffer);
    CHECK(*text.Mid(3) == '\0');
    CHECK(*text.Mid(5) == '\0');
    CHECK(text[2] == 'c');
}

TEST_CASE("escapers encode their characters and no others") {
    UString text;
    CHECK(text.SlashHex("a*(b)\\") == "a\\2A\\28b\\29\\5C");
    CHECK(text.SlashHex2("a*(b)\\") == "a*\\28b\\29\\5C");
    CHECK(text.EscapeMySQL("a'b\"\\c") == "a\\'b\\\"\\\\c");
    CHECK(text.EscapeMySQL("tab\tnl\n%_") == "tab\tnl\n%_");
    for (auto escape : {&UString::SlashHex, &UString::SlashHex2, &UString::EscapeMySQL}) {
        text = "old";
        CHECK((text.*escape)(nullptr).IsEmpty());
    }

    text = "x";
    CHECK(text.AppendSafe("a b%c&d\xc3\xa9") == "xa%20b%25c%26d\xc3\xa9");
    text = "x";
    CHECK(text.AppendSafe2("a b%c&d") == "xa%20b%25c&d");
    text = "x";
    CHECK(text.AddStripped("a1-b2\xc3\xa9Z") == "xabZ");
    text.AddStripped(nullptr).AppendSafe(nullptr).AppendSafe2(nullptr);
    text += static_cast<const char*>(nullptr);
    CHECK(text == "xabZ");

    const std::string quotes(100000, '\'');
    CHECK(text.EscapeMySQL(quotes.c_str()).GetLength() == 200000);
    CHECK(text.buffer_size == 200001);
}

TEST_CASE("trimming keeps what follows a single character") {
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {{"  ab  ", "ab"},   {" a ", "a "},       {"a  ", "a  "},
                 {"\r\nab\t", "ab"}, {"a", "a"},          {" \t\r\n", ""},
                 {"", ""},           {"a b ", "a b"},     {" a", "a"},
                 {"ab", "ab"},       {"\vab\v", "\vab\v"}};
    for (const auto& c : cases) {
        CAPTURE(c.text);
        UString text(c.text);
        text.Trim();
        CHECK(text == c.expected);
    }
}

TEST_CASE("replacing restarts from the front, and always ends") {
    const struct {
        const char* text;
        const char* from;
        const char* to;
        const char* expected;
    } cases[] = {
        {"aaa", "aa", "a", "a"},
        {"a,,,,b", ",,", ",", "a,b"},
        {"abc", "x", "y", "abc"},
        {"aabb", "ab", "", ""},
        {"xabyab", "ab", nullptr, "xy"},
        {"aab", "ab", "b", "b"},
        {"aab", "ab", "ba", "baa"},
        {"abc", "", "y", "abc"},
        // The replacement holds what is looked for: once for each occurrence of the given text.
        {"[date] [date]", "[date]", "<[date]>", "<[date]> <[date]>"},
        {"aaa", "aa", "baa", "baaa"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.text);
        CAPTURE(c.from);
        UString text(c.text);
        CHECK(text.ReplaceAll(c.from, c.to) == (std::strcmp(c.text, c.expected) != 0));
        CHECK(text == c.expected);
    }

    UString text("axbx");
    CHECK_FALSE(text.Replace("z", "y"));
    CHECK_FALSE(text.Replace("", "y"));
    CHECK(text.Replace("x", "y"));
    CHECK(text == "aybx");
    text = "+44 (0)1234";
    text.StripNonNumeric();
    CHECK(text == "4401234");
}

TEST_CASE("formatting answers the length and leaves room for ten more") {
    UString text;
    CHECK(text.Format("%s-%d", "ab", 7) == 4);
    CHECK(text == "ab-7");
    CHECK(text.Format("%*d", 60, 1) == 60);
    CHECK(text.buffer_size == 128);
    CHECK(text.Format("%s", "") == 0);
    CHECK(text.IsEmpty());
}

TEST_CASE("lines of a stream come without newline, long ones in pieces, and none twice") {
    const std::string data = "one\n\n" + std::string(1100, 'x') + "\nlast";
    const std::unique_ptr<FILE, int (*)(FILE*)> stream(
        fmemopen(const_cast<char*>(data.data()), data.size(), "r"), std::fclose);
    REQUIRE(stream != nullptr);
    UString line;
    CHECK(line.fgets(stream.get()) == "one");
    CHECK(line.fgets(stream.get()) == "");
    CHECK(line.fgets(stream.get()).GetLength() == 1023);
    CHECK(line.fgets(stream.get()).GetLength() == 77);
    CHECK(line.fgets(stream.get()) == "last");
    CHECK(line.fgets(stream.get()) == "");
    CHECK(std::feof(stream.get()) != 0);
}

TEST_CASE("comparisons are byte-wise in every combination of types") {
    const UString a("a");
    const UString b("b");
    const UString none;
    char text[] = "a";
    CHECK((a == a && a == "a" && "a" == a && a == text && text == a));
    CHECK((a != b && a != "b" && "b" != a && b != text && text != b));
    CHECK((a < b && a < "b" && "a" < b && none < a));
    CHECK((b > a && b > "a" && "b" > a && UString("\xc3") > a));
    CHECK((a <= a && a <= b && a <= "a"));
    CHECK_FALSE(b <= a);
    CHECK(a + b == "ab");
    CHECK("x" + a == "xa");
    CHECK(a + "x" + static_cast<const char*>(nullptr) == "ax");
}

TEST_CASE("list elements are found by their text") {
    OSList<UStringListObj> list;
    list.Append(new UStringListObj("sales"));
    CHECK(list.First()->IsKey("sales"));
    CHECK_FALSE(list.First()->IsKey("sale"));
    CHECK_FALSE(list.First()->IsKey(nullptr));
    OSListObj& plain = list.First()->s;
    CHECK(plain.IsKey("sales"));
}

TEST_CASE("every buffer comes from the pool when there is one, and goes back to it") {
    CountingPool pool;
    {
        UString text("abc");
        for (int i = 0; i < 100; ++i)
            text += "0123456789";
        CHECK(text.GetLength() == 1003);
        CHECK(Wide(text).substr(0, 6) == "97 98 ");
        const UString copy(text);
        UString moved(std::move(text));
        moved.Free();
    }
    CHECK(pool.taken > 4);
    CHECK(pool.given == pool.taken);
}

TEST_CASE("out of memory is reported, thrown, and leaves the text as it was") {
    const Reports reports;
    CountingPool pool;
    pool.limit = 64;
    UString text("abc");
    CHECK_THROWS_AS(text.Allocate(100), const char*);
    CHECK_THROWS_AS(text.wAllocate(100), const char*);
    CHECK(text == "abc");
    CHECK(reports.All() ==
          "UStringX::Allocate - Out Of memory for size 128\n"
          "UStringX::wAllocate - Out Of memory for size 128\n");
}
