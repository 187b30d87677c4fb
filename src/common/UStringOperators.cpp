#include <cstring>

#include "common/UStringX.h"

namespace {

int Compare(const UString& a, const UString& b) {
    return std::strcmp(a.c_str(), b.c_str());
}

int Compare(const UString& a, const char* b) {
    return std::strcmp(a.c_str(), b);
}

UString Joined(const char* a, const char* b) {
    UString joined(a);
    joined += b;
    return joined;
}

}  // namespace

bool operator==(const UString& a, const UString& b) {
    return Compare(a, b) == 0;
}
bool operator==(const UString& a, const char* b) {
    return Compare(a, b) == 0;
}
bool operator==(const UString& a, char* b) {
    return Compare(a, b) == 0;
}
bool operator==(const char* a, const UString& b) {
    return Compare(b, a) == 0;
}
bool operator==(char* a, const UString& b) {
    return Compare(b, a) == 0;
}

bool operator!=(const UString& a, const UString& b) {
    return Compare(a, b) != 0;
}
bool operator!=(const UString& a, const char* b) {
    return Compare(a, b) != 0;
}
bool operator!=(const UString& a, char* b) {
    return Compare(a, b) != 0;
}
bool operator!=(const char* a, const UString& b) {
    return Compare(b, a) != 0;
}
bool operator!=(char* a, const UString& b) {
    return Compare(b, a) != 0;
}

bool operator<(const UString& a, const UString& b) {
    return Compare(a, b) < 0;
}
bool operator<(const UString& a, const char* b) {
    return Compare(a, b) < 0;
}
bool operator<(const char* a, const UString& b) {
    return Compare(b, a) > 0;
}

bool operator>(const UString& a, const UString& b) {
    return Compare(a, b) > 0;
}
bool operator>(const UString& a, const char* b) {
    return Compare(a, b) > 0;
}
bool operator>(const char* a, const UString& b) {
    return Compare(b, a) < 0;
}

bool operator<=(const UString& a, const UString& b) {
    return Compare(a, b) <= 0;
}
bool operator<=(const UString& a, const char* b) {
    return Compare(a, b) <= 0;
}

UString operator+(const char* a, const UString& b) {
    return Joined(a, b.c_str());
}
UString operator+(const UString& a, const char* b) {
    return Joined(a.c_str(), b);
}
UString operator+(const UString& a, const UString& b) {
    return Joined(a.c_str(), b.c_str());
}
