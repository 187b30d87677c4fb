// JsonObj.h: the JSON reader: turns a text into a tree of nodes that can be asked.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "common/UStringX.h"
#include "kernel/OSList.h"

// A growable text. It takes a buffer with its first character, since most nodes hold no string.
class JsonString {
  public:
    JsonString() = default;
    ~JsonString() { free(alloc_buf); }
    JsonString(const JsonString&) = delete;
    JsonString& operator=(const JsonString&) = delete;

    // Makes room for `size` bytes, the terminating zero among them: at least 64, else twice what
    // there was, often enough. Throws "JsonString out of memory".
    void Alloc(size_t size);
    void Add(char c) { Append(&c, 1); }
    void Append(const char* bytes, size_t size);
    const char* c_str() const { return alloc_buf != nullptr ? alloc_buf : ""; }

    int alloc_len = 0;  // capacity
    char* alloc_buf = nullptr;
    char* end = nullptr;  // the terminating zero
    int len = 0;
};

// One value of a JSON text. A node owns its children.
//
//   JsonObj chart(text, nullptr, 0);            // throws "PARSE4" and the like
//   const char* title = chart.String("title");  // "" when there is none
//
// Reading is lenient: a comma may stand before a closing bracket, literals are compared over their
// own length only ("truex" is true), numbers are whatever strtod takes from a "-" or digit on, and
// what follows the value is not looked at. Member names take no escapes, strings no \u escape.
class JsonObj final : public OSListObj {
  public:
    enum Type { kString = 1, kNumber, kObject, kArray, kTrue, kFalse, kNull };

    // While true, array elements are put in front, so that arrays read backwards.
    static bool reverse_arrays;

    JsonObj* parent;
    // In an object, and there it lies in the text and must not be changed; "__TOP__" at the top;
    // empty in an array.
    UString name;
    JsonString string;
    double number = 0;
    int level;  // 0 at the top
    OSList<JsonObj> values;
    char* end = nullptr;  // the last character of this value in the text
    Type type = kNull;

    // Reads one value. The text is NUL-terminated, is written to (names are terminated in place)
    // and must live as long as the node is looked at. Throws "PARSE1" to "PARSE8", a text when the
    // value is nested deeper than 512 levels or holds more than 2,000,000 values, and "null parent
    // for non top level object" for a null parent with a level other than 0.
    JsonObj(char* text, JsonObj* parent, int level);
    ~JsonObj() override;

    static void* operator new(size_t size);
    static void operator delete(void* node);

    // Reads `"name": [ ... ]` and adds the array's elements to this array. The text must fulfil
    // what the constructor's must. On a throw the elements read so far stay.
    void Expand(char* text);
    // The first child of that name, or null.
    JsonObj* Find(const char* key) const;
    // The string value; "" for a node that is none.
    const char* String() const { return string.c_str(); }
    // The string value of the child; "" when there is none.
    const char* String(const char* key) const;
    // Formats the child, seconds since the epoch, as local time "yyyy-mm-dd hh:mm:ss" into
    // `buffer`, which has room for 20 bytes. Answers the buffer, or "" when the child is no number
    // or no time of the years 0 to 9999.
    const char* GetDateTime(const char* key, char* buffer) const;
    // Follows a path of steps separated by ";": "F" with the letter of a type (A array, O object,
    // N number, T true, F false, n null), ":" and a name goes to that child; "SZ" stores the number
    // of children in `result`. A child that is missing or of another type ends the query with the
    // result as it was. A step that is none of these throws.
    void Query(const UString& path, UString& result) const;
    // Dumps the tree to standard error, `indent` levels to the right.
    void Print(int indent) const;

    bool IsKey(const char* key) override { return name == key; }
    void GiveUpChildren(OSListBase& to) override { to.Splice(values); }

  private:
    friend class JsonParser;
    JsonObj(JsonObj* parent_, int level_) : parent(parent_), level(level_) {}

    void BorrowName(char* text);
    void AddElement(std::unique_ptr<JsonObj> element);

    bool name_borrowed_ = false;
};

// The first character at or behind `p` that is no white space.
char* skip_ws(char* p);
