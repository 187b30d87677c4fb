// LDAPField.h: LDAPField, one attribute of a directory entry in memory.
#pragma once

#include "common/UStringX.h"
#include "kernel/OSList.h"

class LDAPField : public OSListObj {
  public:
    LDAPField() = default;
    // Null texts are empty.
    LDAPField(const char* fieldName, const char* fieldValue) : name(fieldName), value(fieldValue) {}

    operator char*() const { return value; }  // the value, which the field owns; never null
    explicit operator bool() const { return value == "1"; }
    // The value as a decimal number: blanks, a sign, digits, and whatever follows them. 0 without
    // digits, the nearest int for a number beyond them.
    explicit operator int() const;

    UString name;
    UString value;
    UString link;
    bool local = false;  // only in memory: never written to the directory
};

// Compare the value's bytes, where comparing the pointers would compile just as well.
inline bool operator==(const LDAPField& field, const char* text) {
    return field.value == text;
}
