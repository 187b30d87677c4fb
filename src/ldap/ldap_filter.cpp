#include "ldap/ldap_filter.h"

#include "kernel/OSConsole.h"
#include "ldap/ldap.h"

namespace {

constexpr size_t kMinLength = 5;

bool ReportParseError(std::string_view text) {
    ConsoleReport("LDAPFilter_tx: filter parse error %s", text.data());
    return false;
}

// What a filter's first character behind the parenthesis makes of it; 0 for an item.
unsigned char ListTag(char selector) {
    switch (selector) {
        case '&':
            return kLdapFilterAnd;
        case '|':
            return kLdapFilterOr;
        case '!':
            return kLdapFilterNot;
        default:
            return 0;
    }
}

// Finds the parenthesis that closes the one at the beginning, and the first "=" on the way. False
// when the text ends before.
bool FindEnd(std::string_view text, size_t& end, size_t& equals) {
    int open = 0;
    equals = std::string_view::npos;
    for (end = 0; end < text.size(); ++end) {
        const char c = text[end];
        if (c == '(') ++open;
        if (c == ')' && --open == 0) return true;
        if (c == '=' && equals == std::string_view::npos) equals = end;
    }
    return false;
}

}  // namespace

LDAPFilter_tx::LDAPFilter_tx(const char* text)
    : LDAPFilter_tx(std::string_view(text != nullptr ? text : ""), 1) {}

LDAPFilter_tx::LDAPFilter_tx(std::string_view text, int depth) {
    valid = Parse(text, depth) ? 1 : 0;
}

bool LDAPFilter_tx::Parse(std::string_view text, int depth) {
    if (text.size() < kMinLength) {
        ConsoleReport("LDAPFilter_tx: filter too short %s", text.data());
        return false;
    }
    if (text.front() != '(') return ReportParseError(text);
    if (depth > kMaxDepth) {
        ConsoleReport("LDAPFilter_tx: filter nested deeper than %d levels", kMaxDepth);
        return false;
    }
    size_t end = 0;
    size_t equals = 0;
    if (!FindEnd(text, end, equals)) return ReportParseError(text);

    // Only this filter's own part: copying the rest at each level would cost the square of it.
    source_str = text.substr(0, end + 1);
    end_of_filter = source_str.c_str() + end;
    src_len = static_cast<int>(end + 1);
    const unsigned char listTag = ListTag(text[1]);
    if (listTag != 0) return ParseList(text, listTag, depth);
    if (equals == std::string_view::npos || equals < 2) return ReportParseError(text);
    return ParseItem(equals);
}

bool LDAPFilter_tx::ParseList(std::string_view text, unsigned char listTag, int depth) {
    tag = listTag;
    const size_t end = src_len - 1;
    for (size_t at = 2; at < end;) {
        LDAPFilter_tx& child = Adopt(new LDAPFilter_tx(text.substr(at), depth + 1));
        if (child.valid == 0) return false;
        at += child.src_len;
    }
    return true;
}

bool LDAPFilter_tx::ParseItem(size_t equals) {
    const std::string value(source_str, equals + 1, src_len - equals - 2);
    const char relation = source_str[equals - 1];
    const bool ordered = relation == '>' || relation == '<';
    const std::string attribute(source_str, 1, equals - (ordered ? 2 : 1));

    if (!ordered && value == "*") {
        present = std::make_unique<ASN1String>(attribute.c_str(), 0);
        tag = present->tag = kLdapFilterPresent;
        return true;
    }
    Add2Seq(new ASN1String(attribute.c_str(), 0));
    if (!ordered && value.find('*') != std::string::npos) {
        tag = kLdapFilterSubstrings;
        AddSubstrings(value);
        return true;
    }
    if (ordered)
        tag = relation == '>' ? kLdapFilterGreaterOrEqual : kLdapFilterLessOrEqual;
    else
        tag = kLdapFilterEqual;
    Add2Seq(new ASN1String(value.c_str(), 1));
    return true;
}

void LDAPFilter_tx::AddSubstrings(const std::string& value) {
    ASN1Sequence& pieces = Adopt(new ASN1Sequence);
    const auto add = [&pieces](const std::string& piece, unsigned char pieceTag) {
        pieces.Adopt(new ASN1String(piece.c_str(), 1)).tag = pieceTag;
    };
    size_t star = value.find('*');
    if (star > 0) add(value.substr(0, star), kLdapSubstringInitial);
    while (star != std::string::npos) {
        const size_t from = star + 1;
        star = value.find('*', from);
        const std::string piece = value.substr(from, star - from);
        if (piece.empty()) return;
        add(piece, star == std::string::npos ? kLdapSubstringFinal : kLdapSubstringAny);
    }
}

unsigned long LDAPFilter_tx::Length() {
    return present != nullptr ? present->Length() : ASN1Sequence::Length();
}

void LDAPFilter_tx::BerEncode(unsigned char*& out) {
    if (present != nullptr)
        present->BerEncode(out);
    else
        ASN1Sequence::BerEncode(out);
}
