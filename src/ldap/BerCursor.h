// BerCursor.h: reads BER identifier and length octets from bytes that nobody vouches for.
#pragma once

#include <cstddef>
#include <cstdint>

// What stands in front of an element's content (X.690, 8.1.2 and 8.1.3).
struct BerHeader {
    uint8_t tag = 0;      // the whole identifier octet
    uint32_t length = 0;  // bytes of content
};

// A place in a run of bytes that it borrows, and how many are left there. Nothing outside them is
// ever read. A read that fails moves nothing and marks the cursor: all further reads fail as well,
// so that a walk over several elements can ask `ok` once at its end.
class BerCursor {
  public:
    // An octet that announces the number of length octets, and up to four of those.
    static constexpr unsigned kMaxLengthOctets = 5;

    BerCursor(const unsigned char* data, size_t size) : at_(data), left_(size) {}
    // For bytes of our own making, whose end is not known: reads wherever the lengths lead.
    static BerCursor Trusted(const unsigned char* data) { return {data, SIZE_MAX}; }

    const unsigned char* at() const { return at_; }
    size_t left() const { return left_; }
    bool empty() const { return left_ == 0; }
    bool ok() const { return ok_; }
    // Marks the cursor as failed; false, for the caller to return.
    bool Fail();

    // Reads one identifier octet.
    [[nodiscard]] bool ReadTag(uint8_t& tag);
    // Looks at the length octets `offset` bytes ahead, without moving: how many there are, and what
    // they say. More than kMaxLengthOctets are reported and leave `length` as it was.
    [[nodiscard]] bool PeekLength(size_t offset, unsigned& octets, uint32_t& length);
    // Reads identifier and length and moves to the content, all of which is there.
    [[nodiscard]] bool ReadHeader(BerHeader& out);
    // The same, but a content that runs past the end is cut there: `cut` tells, and `out.length` is
    // what there is.
    [[nodiscard]] bool ReadHeaderCut(BerHeader& out, bool& cut);
    // Moves over the next `size` bytes, at most `left`, and answers a cursor over just them.
    BerCursor Take(size_t size);
    // Moves over the next element: a cursor over its content, or a failed one.
    BerCursor TakeElement(BerHeader& out);

  private:
    const unsigned char* at_;
    size_t left_;
    bool ok_ = true;
};
