#include "kernel/OSList.h"

#include <doctest/doctest.h>

#include <memory>
#include <string>

namespace {

// Tells a log when it dies, and may own children.
class Item : public OSLinkListObj {
  public:
    explicit Item(std::string& log, std::string name) : log_(log), name_(std::move(name)) {}
    ~Item() override { log_ += name_; }
    void GiveUpChildren(OSListBase& to) override { to.Splice(children); }
    bool OwnedByList() const override { return owned; }
    const std::string& name() const { return name_; }

    OSList<Item> children;
    bool owned = true;

  private:
    std::string& log_;
    std::string name_;
};

std::string Names(const OSList<Item>& list) {
    std::string names;
    for (const Item& item : list)
        names += item.name();
    return names;
}

}  // namespace

TEST_CASE("a list keeps its order through append, prepend and unlink, and frees what it holds") {
    std::string log;
    {
        OSList<Item> list;
        CHECK(list.empty());
        auto* b = new Item(log, "b");
        list.Append(b);
        list.Append(new Item(log, "c"));
        list.Prepend(new Item(log, "a"));
        CHECK(Names(list) == "abc");
        CHECK(list.size() == 3);
        CHECK(b->previous() == list.First());
        CHECK(b->next() == list.Last());

        list.Unlink(b);
        const std::unique_ptr<Item> mine(b);
        CHECK(b->list() == nullptr);
        CHECK(Names(list) == "ac");
        list.Remove(list.First());
        CHECK(log == "a");
        CHECK(Names(list) == "c");
    }
    CHECK(log == "abc");
}

TEST_CASE("an element that dies leaves its list, and one not owned outlives it") {
    std::string log;
    Item kept(log, "k");
    kept.owned = false;
    {
        OSList<Item> list;
        {
            Item brief(log, "b");
            list.Append(&brief);
            list.Append(&kept);
        }
        CHECK(Names(list) == "k");
    }
    CHECK(log == "b");
    CHECK(kept.list() == nullptr);
}

TEST_CASE("splicing moves all elements behind those of the other list") {
    std::string log;
    OSList<Item> first;
    OSList<Item> second;
    first.Append(new Item(log, "a"));
    second.Append(new Item(log, "b"));
    second.Append(new Item(log, "c"));
    first.Splice(second);
    CHECK(Names(first) == "abc");
    CHECK(second.empty());
    CHECK(first.Last()->list() == &first);
}

TEST_CASE("a very deep tree is freed without recursion") {
    std::string log;
    OSList<Item> list;
    list.Append(new Item(log, "."));
    Item* deepest = list.First();
    for (int i = 0; i < 200000; ++i) {
        auto* child = new Item(log, ".");
        deepest->children.Append(child);
        deepest = child;
    }
    list.Clear();
    CHECK(log.size() == 200001);
}
