// OSBTree.h: keeps keys in order.
#pragma once

#include <cstddef>
#include <memory>
#include <set>

// A key. What it orders is the derived class's own affair.
class OSBTreeObj {
  public:
    virtual ~OSBTreeObj() = default;
    // Below, equal to or above 0 when this key stands before, beside or behind `other`, which is of
    // the same class. Must be a consistent order.
    virtual int Compare(const OSBTreeObj& other) const = 0;
};

// Owns its keys and gives them in order; equal ones stay in the order in which they came.
class OSBTree {
    struct Before {
        bool operator()(const std::unique_ptr<OSBTreeObj>& a,
                        const std::unique_ptr<OSBTreeObj>& b) const {
            return a->Compare(*b) < 0;
        }
    };
    using Keys = std::multiset<std::unique_ptr<OSBTreeObj>, Before>;

  public:
    void Insert(std::unique_ptr<OSBTreeObj> key) { keys_.insert(std::move(key)); }
    size_t size() const { return keys_.size(); }
    Keys::const_iterator begin() const { return keys_.begin(); }
    Keys::const_iterator end() const { return keys_.end(); }

  private:
    Keys keys_;
};
