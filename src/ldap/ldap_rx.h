// ldap_rx.h: received directory messages: the envelope, and what a client receives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "ldap/BerCursor.h"
#include "ldap/asn1ber.h"

class Socket;

// The bytes of one whole message.
struct LDAPBytes {
    std::unique_ptr<unsigned char[]> data;
    size_t size = 0;
};

// A received message. It owns its bytes, and nothing in it reads beyond them. Whatever does not
// hold together is reported; decoding never throws.
class LDAPMessage_rx : public ASN1Type {
  public:
    // Decodes the envelope. An operation that announces more than there is, ends where the bytes
    // do.
    explicit LDAPMessage_rx(LDAPBytes message);

    // Reads one message from the socket; the caller owns it. Null when there is none: `*err`, when
    // given, is then kLdapReadTimeout, kLdapReadMalformed, or 0 for an operation that is not
    // understood. Sizes count modulo 65,536: a longer message is misread.
    static LDAPMessage_rx* GetMsg(Socket* s, int* err);
    // The part of GetMsg that works on bytes already there.
    static LDAPMessage_rx* Decode(LDAPBytes message, int* err);

    void BerEncode(unsigned char*&) override {}  // what was received is not sent again

    uint32_t msg_id = 0;
    uint8_t op_tag = 0;                     // identifier octet of the operation
    const unsigned char* op_ptr = nullptr;  // where it stands, in the bytes that this owns
    int valid = 0;                          // non-zero: everything could be decoded

  protected:
    // The operation's content, as far as it is there; one that is not all there is not `valid`.
    BerCursor Operation();

  private:
    LDAPBytes message_;
};

// A response of any operation that carries a result. A referral is ignored.
class LDAPResult_rx : public LDAPMessage_rx {
  public:
    explicit LDAPResult_rx(LDAPBytes message);

    int resultCode;  // kLdapProtocolError when it cannot be decoded
    std::unique_ptr<ASN1String> matchedDN;
    std::unique_ptr<ASN1String> errorMessage;
};

// A search result entry. Of each attribute the first value counts: the directory's entries are
// single-valued. An attribute without values reads as "".
class LDAPSearchRes_rx : public LDAPMessage_rx {
  public:
    explicit LDAPSearchRes_rx(LDAPBytes message);

    // Yield name and value, which live as long as this message; 0 when none is left.
    int FirstAttribute(char*& name, char*& value);
    int NextAttribute(char*& name, char*& value);

    std::vector<ASN1String> attributes;      // names and values alternately
    size_t attr_itr = 0;                     // the next one to yield
    std::unique_ptr<ASN1String> objectName;  // the DN; never null

  private:
    bool DecodeAttributes(BerCursor list);
    bool DecodeAttribute(BerCursor attribute);
};
