// ldap_requests_rx.h: received directory messages: what a server receives.
//
// Of each request, `valid` is 0 when it does not hold together; what came before the fault is there
// all the same, and no text is ever null.
#pragma once

#include <memory>
#include <vector>

#include "ldap/ldap_rx.h"

class LDAPBindReq_rx : public LDAPMessage_rx {
  public:
    explicit LDAPBindReq_rx(LDAPBytes message);

    int version;
    std::unique_ptr<ASN1String> name;
    std::unique_ptr<ASN1String> cred;
    int method;  // 0 simple, 1 and 2 the two forms of Kerberos; -1 any other, which is not valid
};

class LDAPUnbindReq_rx : public LDAPMessage_rx {
  public:
    using LDAPMessage_rx::LDAPMessage_rx;
};

// One change of a modify request.
class LDAPModification_rx {
  public:
    // Decodes the content of one modification; a fault is reported and leaves the cursor not ok().
    explicit LDAPModification_rx(BerCursor& in);

    int op;  // 0 add, 1 delete, 2 replace
    std::unique_ptr<ASN1String> attr_name;
    std::vector<std::unique_ptr<ASN1String>> values;
};

class LDAPModifyReq_rx : public LDAPMessage_rx {
  public:
    explicit LDAPModifyReq_rx(LDAPBytes message);

    std::unique_ptr<ASN1String> object;  // the DN
    std::vector<std::unique_ptr<LDAPModification_rx>> modifications;
};

// One attribute of an add request.
class LDAPAddAttr_rx {
  public:
    explicit LDAPAddAttr_rx(BerCursor& in);  // as LDAPModification_rx

    std::unique_ptr<ASN1String> attr_name;
    std::vector<std::unique_ptr<ASN1String>> values;
};

class LDAPAddReq_rx : public LDAPMessage_rx {
  public:
    explicit LDAPAddReq_rx(LDAPBytes message);

    std::unique_ptr<ASN1String> entry;  // the DN
    std::vector<std::unique_ptr<LDAPAddAttr_rx>> attributes;
};

class LDAPDelReq_rx : public LDAPMessage_rx {
  public:
    explicit LDAPDelReq_rx(LDAPBytes message);

    std::unique_ptr<ASN1String> entry;  // the DN
};

class LDAPModRDNReq_rx : public LDAPMessage_rx {
  public:
    explicit LDAPModRDNReq_rx(LDAPBytes message);

    std::unique_ptr<ASN1String> entry;  // the DN
    std::unique_ptr<ASN1String> newrdn;
    int deleteoldrdn;  // non-zero: the old name's value goes
};
