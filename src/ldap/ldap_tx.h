// ldap_tx.h: directory messages to send. Each is used once: built, sent and destroyed.
#pragma once

#include <cstdint>

#include "ldap/asn1ber.h"

class LDAPMod;
class Socket;

// The envelope. It holds the message id; the caller adds exactly one operation and sends.
class LDAPMessage_tx : public ASN1Sequence {
  public:
    explicit LDAPMessage_tx(int msg_id);

    // Encodes the message and writes it, or with `queue` appends it to the socket's output queue.
    // Answers the socket's result, 0 for success.
    int Send(Socket* s, int queue);

    int32_t msg_id;
};

// Version 2. `method`: 0 simple, 1 and 2 the two forms of Kerberos.
class LDAPBindReq_tx : public ASN1Sequence {
  public:
    LDAPBindReq_tx(const char* dn, const char* password, int method);
};

class LDAPUnbindReq_tx : public ASN1Null {
  public:
    LDAPUnbindReq_tx();
};

class LDAPSearchReq_tx : public ASN1Sequence {
  public:
    // `scope`: 0 the base entry, 1 one level, 2 the whole subtree. `attrs` is ended by null; null
    // or empty asks for all. Limits: entries and seconds, 0 for none.
    LDAPSearchReq_tx(const char* base, int scope, int deref, int sizelimit, int timelimit,
                     int typesonly, const char* filter, const char* const* attrs);

    int valid = 0;  // 0: the filter cannot be read, and the request must not be sent
};

class LDAPModifyReq_tx : public ASN1Sequence {
  public:
    // `mods` ends with a record without type; null: none.
    LDAPModifyReq_tx(const char* dn, const LDAPMod* mods);
};

class LDAPAddReq_tx : public ASN1Sequence {
  public:
    // As above; what a record says about adding, deleting or replacing does not count.
    LDAPAddReq_tx(const char* dn, const LDAPMod* mods);
};

class LDAPDelReq_tx : public ASN1String {
  public:
    explicit LDAPDelReq_tx(const char* dn);
};

// Renames an entry below the same superior. Never asks to delete the old name.
class LDAPModRDNReq_tx : public ASN1Sequence {
  public:
    LDAPModRDNReq_tx(const char* dn, const char* newrdn);
};

// Any response that carries a result.
class LDAPResult_tx : public ASN1Sequence {
  public:
    LDAPResult_tx(unsigned char responseTag, int code, const char* matched, const char* message);
};

class LDAPSearchResp_tx : public ASN1Sequence {
  public:
    // Takes `attrs` over: a sequence of { type, SET OF values }.
    LDAPSearchResp_tx(const char* dn, ASN1Sequence* attrs);
};
