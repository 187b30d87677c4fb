// OSList.h: the intrusive lists of the house. An element carries its own links, a list owns its
// elements, and this file is the only place that deletes them.
#pragma once

#include <cstddef>
#include <iterator>

class OSListBase;

// What can stand in a list. Copying an element copies no links: the copy stands in no list.
class OSListObj {
  public:
    OSListObj() = default;
    OSListObj(const OSListObj&) {}
    OSListObj& operator=(const OSListObj&) { return *this; }
    virtual ~OSListObj();

    // True when this element is the one that `key` names; the base has no key.
    virtual bool IsKey(const char* key);

    // Moves the elements that this one owns to the end of `to`. Whatever owns lists of its own says
    // so here: the list then frees a tree of any depth in a loop and never by recursion.
    virtual void GiveUpChildren(OSListBase& to);

    // False for an element that its list holds but must not delete.
    virtual bool OwnedByList() const;

    OSListObj* next() const { return next_; }
    OSListObj* previous() const { return previous_; }
    // The list this element stands in, or null.
    OSListBase* list() const { return list_; }

  private:
    friend class OSListBase;
    OSListObj* next_ = nullptr;
    OSListObj* previous_ = nullptr;
    OSListBase* list_ = nullptr;
};

// An element that exists to carry something in a list.
class OSLinkListObj : public OSListObj {};

// The untyped list. It takes ownership of what is appended to it.
class OSListBase {
  public:
    OSListBase() = default;
    OSListBase(const OSListBase&) = delete;
    OSListBase& operator=(const OSListBase&) = delete;
    ~OSListBase() { Clear(); }

    void Append(OSListObj* element);
    void Prepend(OSListObj* element);
    // Takes the element out and hands it to the caller.
    void Unlink(OSListObj* element);
    // Takes the element out and frees it.
    void Remove(OSListObj* element);
    void Clear();
    // Moves all elements of `from` behind those of this list.
    void Splice(OSListBase& from);

    bool empty() const { return first_ == nullptr; }
    size_t size() const { return size_; }
    OSListObj* FirstObj() const { return first_; }
    OSListObj* LastObj() const { return last_; }

  private:
    OSListObj* first_ = nullptr;
    OSListObj* last_ = nullptr;
    size_t size_ = 0;
};

// A list of T, which derives from OSListObj.
template <class T>
class OSList : public OSListBase {
  public:
    class iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = T*;
        using reference = T&;

        explicit iterator(OSListObj* at = nullptr) : at_(at) {}
        T& operator*() const { return *static_cast<T*>(at_); }
        T* operator->() const { return static_cast<T*>(at_); }
        iterator& operator++() {
            at_ = at_->next();
            return *this;
        }
        iterator operator++(int) {
            const iterator before = *this;
            at_ = at_->next();
            return before;
        }
        bool operator==(const iterator& other) const = default;

      private:
        OSListObj* at_;
    };

    iterator begin() const { return iterator(FirstObj()); }
    iterator end() const { return iterator(); }
    T* First() const { return static_cast<T*>(FirstObj()); }
    T* Last() const { return static_cast<T*>(LastObj()); }
};
