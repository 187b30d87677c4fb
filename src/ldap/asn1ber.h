// asn1ber.h: the elements of the Basic Encoding Rules (X.690) that directory messages are made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class BerCursor;

// One element: an identifier octet, a definite length of up to four octets, and content.
//
// To encode: build the tree, call Length() on its root (which fixes the length of every sequence),
// allocate that many bytes and call BerEncode(). The tag may be overwritten at any time before.
//
// Each element has two decoding constructors. That from a BerCursor reads nothing beyond the
// cursor's end, and a cursor that is not ok() afterwards means that nothing was decoded. That from
// a pointer believes the lengths, so it is for bytes of our own making only.
class ASN1Type {
  public:
    explicit ASN1Type(unsigned char elementTag) : tag(elementTag) {}
    virtual ~ASN1Type() = default;
    ASN1Type(const ASN1Type&) = delete;
    ASN1Type& operator=(const ASN1Type&) = delete;

    // Writes the element at `out`, where there must be Length() bytes, and moves `out` behind it.
    virtual void BerEncode(unsigned char*& out) = 0;
    // Size of the whole encoded element in bytes.
    virtual unsigned long Length();

    // `n` must fit 32 bits.
    void SetLength(unsigned long n);
    void BerHdr(unsigned char*& out) const;
    // Number of length octets, the one at `p` included.
    static unsigned GetLenLen(const unsigned char* p);
    // Decodes the length octets at `p`; an impossible number of them leaves `length` alone.
    void GetLen(const unsigned char* p);

    uint8_t tag;                   // the whole identifier octet: class, constructed bit, number
    int32_t lenlen = 1;            // number of length octets, 1 to 5
    uint32_t length = 0;           // bytes of content
    uint8_t coded_length[5] = {};  // the length octets as they go on the wire

  protected:
    ASN1Type(ASN1Type&&) = default;

    // Takes `lenlen`, `length` and `coded_length` from the length octets, without moving.
    bool PeekLength(BerCursor& in);
};

class ASN1Null : public ASN1Type {
  public:
    ASN1Null() : ASN1Type(0x05) {}
    void BerEncode(unsigned char*& out) override { BerHdr(out); }
};

// A 32-bit integer, in 1 to 4 bytes of two's complement.
class ASN1Integer : public ASN1Type {
  public:
    explicit ASN1Integer(int v) : ASN1Integer(v, 0x02) {}
    // Take INTEGER, BOOLEAN and ENUMERATED. Whatever else, or a content of no such size, is
    // reported and leaves `val` 0. A BOOLEAN from others is any value but 0.
    explicit ASN1Integer(unsigned char*& p);
    explicit ASN1Integer(BerCursor& in);

    void BerEncode(unsigned char*& out) override;
    bool operator==(const ASN1Integer& other) const { return val == other.val; }

    uint8_t coded_val[4] = {};  // the content; its first `length` bytes count
    int32_t val = 0;

  protected:
    ASN1Integer(int v, unsigned char elementTag);

  private:
    void Decode(BerCursor& in);
};

class ASN1Enumerated : public ASN1Integer {
  public:
    explicit ASN1Enumerated(int v) : ASN1Integer(v, 0x0A) {}
};

// True goes out as the integer 1.
class ASN1Boolean : public ASN1Integer {
  public:
    explicit ASN1Boolean(int v) : ASN1Integer(v, 0x01) {}
};

// An octet string; decoding takes any primitive element and keeps its tag.
class ASN1String : public ASN1Type {
  public:
    // With `unescape`, a backslash and two hexadecimal digits become the byte they name; others are
    // reported, and read as strtol would. Null is the empty text.
    ASN1String(const char* text, int unescape);
    ASN1String(const unsigned char* data, unsigned long size);
    explicit ASN1String(unsigned char*& p);
    explicit ASN1String(BerCursor& in);
    // Leaves the other without a content. Strings stand in lists by the thousand.
    ASN1String(ASN1String&& from) = default;

    void BerEncode(unsigned char*& out) override;

    std::unique_ptr<char[]> str;  // `length` bytes, which may hold NULs, and a NUL

  private:
    void SetContent(const void* data, size_t size);
    void Decode(BerCursor& in);
};

// A constructed element. It owns its children.
class ASN1Sequence : public ASN1Type {
  public:
    ASN1Sequence() : ASN1Type(0x30) {}

    // Takes `child` over and appends it. A null child is reported and encodes as nothing.
    void Add2Seq(ASN1Type* child);
    // The same, and answers the child, which lives as long as the sequence.
    template <class T>
    T& Adopt(T* child) {
        Add2Seq(child);
        return *child;
    }

    unsigned long Length() override;
    // Relies on a Length() since the last change.
    void BerEncode(unsigned char*& out) override;

    std::vector<std::unique_ptr<ASN1Type>> seq_list;
};

// SET OF.
class ASN1Set : public ASN1Sequence {
  public:
    ASN1Set() { tag = 0x31; }
};
