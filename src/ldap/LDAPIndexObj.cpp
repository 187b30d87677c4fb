#include "ldap/LDAPIndexObj.h"

#include <strings.h>

#include <cstdlib>
#include <tuple>

#include "ldap/LDAPRow.h"

namespace {

// Reads a decimal number, the nearest that fits, and moves behind it.
long long TakeNumber(const char*& at) {
    char* end = nullptr;
    const long long number = std::strtoll(at, &end, 10);
    at = end;
    return number;
}

// Moves behind the separator; without it nothing further is read.
bool Skip(const char*& at, char separator) {
    if (*at != separator) return false;
    ++at;
    return true;
}

template <class T>
int Sign(const T& a, const T& b) {
    return a < b ? -1 : (b < a ? 1 : 0);
}

}  // namespace

LDAPIndexObj::LDAPIndexObj(LDAPRow& row, const char* name, Order order, bool descending)
    : r(&row), numericalOrder(order), descendingOrder(descending) {
    if (const LDAPField* field = row.Find(name)) value = field->value;
    if (order == kNumber) nvalue = std::strtoll(value.c_str(), nullptr, 10);
    if (order == kDateTime) ReadDateTime();
}

void LDAPIndexObj::ReadDateTime() {
    const char* at = value.c_str();
    hour = TakeNumber(at);
    if (!Skip(at, ':')) return;
    minute = TakeNumber(at);
    day = TakeNumber(at);  // which skips the blanks in front
    if (!Skip(at, '/')) return;
    month = TakeNumber(at);
    if (!Skip(at, '/')) return;
    year = TakeNumber(at);
}

int LDAPIndexObj::CompareAscending(const LDAPIndexObj& other) const {
    switch (numericalOrder) {
        case kText:
            return strcasecmp(value.c_str(), other.value.c_str());
        case kDateTime:
            return Sign(std::tie(year, month, day, hour, minute),
                        std::tie(other.year, other.month, other.day, other.hour, other.minute));
        default:
            return Sign(nvalue, other.nvalue);
    }
}

int LDAPIndexObj::Compare(const OSBTreeObj& other) const {
    const auto& key = static_cast<const LDAPIndexObj&>(other);
    return descendingOrder ? key.CompareAscending(*this) : CompareAscending(key);
}
