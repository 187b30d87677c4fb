#include "cgiFramework/XMLPage.h"

#include <doctest/doctest.h>

#include <memory>
#include <string>

#include "unit/cgiFramework/Rendered.h"

namespace {

std::unique_ptr<XMLItem> Item(const char* value, const char* tags, bool withChild = false) {
    auto item = std::make_unique<XMLItem>("n", value, "%s", tags);
    if (withChild) item->Add(new XMLItem("c", 5, nullptr));
    return item;
}

}  // namespace

TEST_CASE("elements render to the byte") {
    const struct {
        const char* what;
        std::unique_ptr<XMLItem> item;
        const char* expected;
    } cases[] = {
        {"a value", Item("v", ""), "<n>v</n>\n"},
        {"attributes", Item("v", "a=\"1\""), "<n a=\"1\">v</n>\n"},
        {"nothing in it", Item("", ""), "<n/>\n"},
        {"attributes alone", Item(nullptr, "a=\"1\""), "<n a=\"1\"/>\n"},
        {"children break the line", Item("", "", true), "<n>\n<c>5</c>\n</n>\n"},
        {"children behind a value do not", Item("v", "a", true), "<n a>v<c>5</c>\n</n>\n"},
        {"escaping everywhere, but no quotes", Item("a<b&c\"'", "t=\"<&>\""),
         "<n t=\"&lt;&amp;&gt;\">a&lt;b&amp;c\"'</n>\n"},
        {"what no document may hold",
         Item("\x01\t\r\n\xC3\xA9\xC3(\xE2\x82\xAC\xF0\x9F\x98\x80\xFF", ""),
         "<n> \t\r\n\xC3\xA9 (\xE2\x82\xAC\xF0\x9F\x98\x80 </n>\n"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(Rendered(*c.item) == c.expected);
    }
    XMLItem named("a&b", "v", nullptr);
    CHECK(Rendered(named) == "<a&amp;b>v</a&amp;b>\n");
}

TEST_CASE("values can be replaced and read back") {
    XMLItem item("n", 12, "id=%d", 3);
    CHECK(static_cast<int>(item) == 12);
    CHECK(static_cast<bool>(item));
    item.Set("%s-%d", "0x", 1);
    item.SetTags("id=\"%d\"", 4);
    CHECK(std::string(item) == "0x-1");
    CHECK_FALSE(static_cast<bool>(item));
    CHECK(Rendered(item) == "<n id=\"4\">0x-1</n>\n");
    item.Set(0);
    CHECK(Rendered(item) == "<n id=\"4\">0</n>\n");
}

TEST_CASE("a document has its header block and declaration") {
    XMLPage page;
    page.Add(new XMLItem("r", "v", nullptr));
    const std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r>v</r>\n";
    CHECK(Rendered(page) ==
          "Cache-Control: no-cache, no-store, max-age=1, must-revalidate\n"
          "Content-type: \tapplication/xml\n\n" +
              document);
    page.header = "";
    CHECK(Rendered(page) == document);
}
