#include "ldap/LDAPMod.h"

#include <cstring>

namespace {

std::unique_ptr<char[]> Copy(const char* text) {
    if (text == nullptr) text = "";
    const size_t size = std::strlen(text) + 1;
    auto copy = std::make_unique<char[]>(size);
    std::memcpy(copy.get(), text, size);
    return copy;
}

}  // namespace

void LDAPMod::Set(const char* type, const char* value) {
    ownType_ = Copy(type);
    ownValue_ = Copy(value);
    mod_op = kReplace;
    mod_type = ownType_.get();
    vals[0] = ownValue_.get();
    vals[1] = nullptr;
    mod_vals.modv_strvals = vals;
}
