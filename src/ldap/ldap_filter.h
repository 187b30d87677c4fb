// ldap_filter.h: a search filter, from its text form (RFC 4515) to its encoding.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ldap/asn1ber.h"

// Parses while it is constructed; what goes wrong is reported. Understands and, or, not, equality,
// presence, substrings, >= and <=. A few rules of its own, which callers rely on:
// - what follows the closing parenthesis is ignored, blanks between sub-filters are not allowed;
// - "!" takes any number of sub-filters;
// - in a value with wildcards, everything behind a doubled "*" is dropped;
// - "~" and ":" in front of "=" belong to the attribute's name;
// - a backslash does not hide a parenthesis: values go through UString::SlashHex first.
class LDAPFilter_tx : public ASN1Sequence {
  public:
    // Null is the empty text.
    explicit LDAPFilter_tx(const char* text);

    unsigned long Length() override;
    void BerEncode(unsigned char*& out) override;

    std::string source_str;               // copy of the filter's text
    const char* end_of_filter = nullptr;  // its closing parenthesis, inside `source_str`
    int src_len = 0;                      // characters from parenthesis to parenthesis
    std::unique_ptr<ASN1String> present;  // of a presence filter: its whole encoding
    int valid = 0;                        // non-zero: parsed, and may be sent

  private:
    // Filters come from pages with user input in them, and each level costs stack.
    static constexpr int kMaxDepth = 100;

    // `text` reaches to the end of the whole filter's text, which a NUL ends.
    LDAPFilter_tx(std::string_view text, int depth);

    bool Parse(std::string_view text, int depth);
    bool ParseList(std::string_view text, unsigned char listTag, int depth);
    bool ParseItem(size_t equals);
    void AddSubstrings(const std::string& value);
};
