#include "ldap/BerCursor.h"

#include <algorithm>

#include "kernel/OSConsole.h"
#include "ldap/asn1ber.h"

bool BerCursor::Fail() {
    ok_ = false;
    return false;
}

bool BerCursor::ReadTag(uint8_t& tag) {
    if (!ok_ || left_ == 0) return Fail();
    tag = *at_++;
    --left_;
    return true;
}

bool BerCursor::PeekLength(size_t offset, unsigned& octets, uint32_t& length) {
    if (!ok_ || left_ <= offset) return Fail();
    octets = ASN1Type::GetLenLen(at_ + offset);
    if (octets > kMaxLengthOctets) {
        ConsoleReport("ASN1Type::GetLen: length too long: %d\r\n", static_cast<int>(octets));
        return Fail();
    }
    if (octets > left_ - offset) return Fail();

    // A single octet is the length itself: 0x80 reads as 128, as indefinite lengths do not exist.
    length = octets == 1 ? at_[offset] : 0;
    for (unsigned i = 1; i < octets; ++i)
        length = (length << 8) | at_[offset + i];
    return true;
}

bool BerCursor::ReadHeaderCut(BerHeader& out, bool& cut) {
    unsigned octets = 0;
    uint32_t length = 0;
    if (!PeekLength(1, octets, length)) return false;
    out.tag = *at_;
    at_ += 1 + octets;
    left_ -= 1 + octets;
    cut = length > left_;
    out.length = cut ? static_cast<uint32_t>(left_) : length;
    return true;
}

bool BerCursor::ReadHeader(BerHeader& out) {
    const BerCursor before = *this;
    bool cut = false;
    if (!ReadHeaderCut(out, cut)) return false;
    if (!cut) return true;
    *this = before;
    return Fail();
}

BerCursor BerCursor::Take(size_t size) {
    BerCursor content(at_, std::min(size, left_));
    content.ok_ = ok_;
    at_ += content.left_;
    left_ -= content.left_;
    return content;
}

BerCursor BerCursor::TakeElement(BerHeader& out) {
    return ReadHeader(out) ? Take(out.length) : Take(0);
}
