#include "tools/directoryd/Filter.h"

#include <algorithm>

#include "common/Parse.h"
#include "ldap/asn1ber.h"
#include "ldap/ldap.h"

namespace directoryd {

namespace {

constexpr unsigned char kApproximate = 0xA8;
constexpr unsigned char kExtensible = 0xA9;

bool ReadText(BerCursor& in, std::string& text) {
    const ASN1String element(in);
    if (!in.ok()) return false;
    text.assign(element.str.get(), element.length);
    return true;
}

// Below 0, 0 or above 0, as `a` stands to `b`.
int Compare(const std::string& a, const std::string& b) {
    int64_t x = 0;
    int64_t y = 0;
    if (ParseInt64(a.c_str(), x) && ParseInt64(b.c_str(), y)) return x < y ? -1 : x > y;
    return Fold(a).compare(Fold(b));
}

}  // namespace

std::unique_ptr<Filter> Filter::Decode(BerCursor& in, int level) {
    BerHeader header;
    const BerCursor content = in.TakeElement(header);
    if (level > kMostLevels || !in.ok()) return nullptr;
    auto filter = std::make_unique<Filter>();
    filter->tag_ = header.tag;
    return filter->DecodeContent(content, level) ? std::move(filter) : nullptr;
}

bool Filter::DecodeContent(BerCursor content, int level) {
    switch (tag_) {
        case kLdapFilterAnd:
        case kLdapFilterOr:
        case kLdapFilterNot:
            while (!content.empty()) {
                inner_.push_back(Decode(content, level + 1));
                if (inner_.back() == nullptr) return false;
            }
            return tag_ != kLdapFilterNot || !inner_.empty();
        case kLdapFilterPresent:
            attribute_.assign(content.at(), content.at() + content.left());
            return true;
        case kLdapFilterSubstrings:
            return ReadText(content, attribute_) && DecodePieces(content);
        case kLdapFilterEqual:
        case kLdapFilterGreaterOrEqual:
        case kLdapFilterLessOrEqual:
        case kApproximate:
            return ReadText(content, attribute_) && ReadText(content, value_) && content.empty();
        default:
            return tag_ == kExtensible;
    }
}

bool Filter::DecodePieces(BerCursor content) {
    BerHeader header;
    BerCursor list = content.TakeElement(header);
    if (!list.ok() || !content.empty()) return false;
    while (!list.empty()) {
        Piece piece = {*list.at(), {}};
        if (piece.tag < kLdapSubstringInitial || piece.tag > kLdapSubstringFinal ||
            !ReadText(list, piece.text))
            return false;
        piece.text = Fold(piece.text);
        pieces_.push_back(std::move(piece));
    }
    return true;
}

bool Filter::Fits(const Entry& entry) const {
    const auto fits = [&entry](const std::unique_ptr<Filter>& f) { return f->Fits(entry); };
    switch (tag_) {
        case kLdapFilterAnd:
            return std::all_of(inner_.begin(), inner_.end(), fits);
        case kLdapFilterOr:
            return std::any_of(inner_.begin(), inner_.end(), fits);
        case kLdapFilterNot:
            return std::none_of(inner_.begin(), inner_.end(), fits);
        case kExtensible:
            return false;
        default:
            break;
    }
    const Attribute* const attribute = entry.Find(attribute_);
    return attribute != nullptr && ValueFits(attribute->value);
}

bool Filter::ValueFits(const std::string& value) const {
    switch (tag_) {
        case kLdapFilterPresent:
            return true;
        case kLdapFilterSubstrings:
            return PiecesFit(Fold(value));
        case kLdapFilterGreaterOrEqual:
            return Compare(value, value_) >= 0;
        case kLdapFilterLessOrEqual:
            return Compare(value, value_) <= 0;
        default:
            return SameText(value, value_);
    }
}

// Without pieces nothing fits: clients write that for a "*" with nothing around it.
bool Filter::PiecesFit(const std::string& value) const {
    size_t at = 0;
    for (const Piece& piece : pieces_) {
        if (piece.tag == kLdapSubstringInitial) {
            if (at != 0 || !value.starts_with(piece.text)) return false;
            at = piece.text.size();
        } else if (piece.tag == kLdapSubstringFinal) {
            return value.size() - at >= piece.text.size() && value.ends_with(piece.text);
        } else {
            at = value.find(piece.text, at);
            if (at == std::string::npos) return false;
            at += piece.text.size();
        }
    }
    return !pieces_.empty();
}

}  // namespace directoryd
