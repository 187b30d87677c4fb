#include "kernel/OSBTree.h"

#include <doctest/doctest.h>

#include <string>

namespace {

struct Key : OSBTreeObj {
    Key(int rank_, char label_) : rank(rank_), label(label_) {}
    int Compare(const OSBTreeObj& other) const override {
        return rank - static_cast<const Key&>(other).rank;
    }
    int rank;
    char label;
};

}  // namespace

TEST_CASE("keys come back in order, and equal ones as they came") {
    OSBTree tree;
    const char labels[] = "cadbe";
    const int ranks[] = {3, 1, 3, 2, 3};
    for (int i = 0; i < 5; ++i)
        tree.Insert(std::make_unique<Key>(ranks[i], labels[i]));
    std::string order;
    for (const auto& key : tree)
        order += static_cast<const Key&>(*key).label;
    CHECK(order == "abcde");
    CHECK(tree.size() == 5);
}
