// LDAPMod.h: one attribute to add to, change in, or give to an entry.
#pragma once

#include <memory>

// A value of any bytes.
struct LDAPBinaryValue {
    unsigned long length;
    const char* data;
};

// An operation takes an array of these, ended by a record whose `mod_type` is null. The record
// borrows what it points at, unless Set() filled it. It cannot be copied or moved, as `mod_vals`
// may point into it.
class LDAPMod {
  public:
    enum Operation {
        kAdd = 0,
        kDelete = 1,
        kReplace = 2,
        kBinary = 0x80,  // a flag: the values are `modv_bvals`
    };

    LDAPMod() = default;
    LDAPMod(const LDAPMod&) = delete;
    LDAPMod& operator=(const LDAPMod&) = delete;

    // Replace all values of `type` by `value`. Both are copied.
    void Set(const char* type, const char* value);

    const char* vals[2] = {};  // an inline list of one value
    int mod_op = kAdd;
    const char* mod_type = nullptr;
    union {
        const char* const* modv_strvals = nullptr;  // texts, ended by null
        const LDAPBinaryValue* const* modv_bvals;   // values, ended by null
    } mod_vals;  // a null list, like an empty one, stands for no values

  private:
    std::unique_ptr<char[]> ownType_;
    std::unique_ptr<char[]> ownValue_;
};
