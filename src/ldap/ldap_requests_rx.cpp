#include "ldap/ldap_requests_rx.h"

#include <utility>

#include "kernel/OSConsole.h"

namespace {

constexpr uint8_t kSequenceTag = 0x30;

// Decodes { type, SET OF values }, the rest of `in`. Answers how far it came: 0 for all of it, 1
// when the type, 2 when the values do not hold together.
int DecodeTypeAndValues(BerCursor& in, std::unique_ptr<ASN1String>& type,
                        std::vector<std::unique_ptr<ASN1String>>& values) {
    type = std::make_unique<ASN1String>(in);
    if (!in.ok()) return 1;
    BerHeader header;
    BerCursor set = in.TakeElement(header);
    while (set.ok() && !set.empty()) {
        auto value = std::make_unique<ASN1String>(set);
        if (set.ok()) values.push_back(std::move(value));
    }
    return in.ok() && set.ok() && in.empty() ? 0 : 2;
}

// Decodes a SEQUENCE of Items, the rest of `in`, as far as they hold together. False when they do
// not; `found` tells whether there was a SEQUENCE at all.
template <class Item>
bool DecodeItems(BerCursor& in, std::vector<std::unique_ptr<Item>>& items, bool& found) {
    found = in.ok() && !in.empty() && *in.at() == kSequenceTag;
    if (!found) return false;
    BerHeader header;
    bool cut = false;
    if (!in.ReadHeaderCut(header, cut)) return false;
    BerCursor list = in.Take(header.length);
    while (!list.empty()) {
        BerCursor content = list.TakeElement(header);
        if (!list.ok()) return false;
        auto item = std::make_unique<Item>(content);
        if (!content.ok()) return false;
        items.push_back(std::move(item));
    }
    return !cut && in.empty();
}

}  // namespace

LDAPBindReq_rx::LDAPBindReq_rx(LDAPBytes message) : LDAPMessage_rx(std::move(message)) {
    constexpr uint8_t kSimple = 0x80;
    constexpr uint8_t kLastMethod = 0x82;
    BerCursor in = Operation();
    version = ASN1Integer(in).val;
    name = std::make_unique<ASN1String>(in);
    cred = std::make_unique<ASN1String>(in);
    method = cred->tag >= kSimple && cred->tag <= kLastMethod ? cred->tag - kSimple : -1;
    if (!in.ok() || method < 0) valid = 0;
}

LDAPModification_rx::LDAPModification_rx(BerCursor& in) {
    static constexpr const char* kFaults[] = {"LDAPModification_rx: format error 1",
                                              "LDAPModification_rx: format error 2",
                                              "LDAPModification_rx: format error 3"};
    op = ASN1Integer(in).val;
    BerHeader header;
    BerCursor change = in.TakeElement(header);
    const int fault = DecodeTypeAndValues(change, attr_name, values);
    if (in.ok() && in.empty() && fault == 0) return;
    ConsoleReport("%s", kFaults[in.ok() && in.empty() ? fault : 0]);
    in.Fail();
}

LDAPModifyReq_rx::LDAPModifyReq_rx(LDAPBytes message) : LDAPMessage_rx(std::move(message)) {
    BerCursor in = Operation();
    object = std::make_unique<ASN1String>(in);
    bool found = false;
    if (DecodeItems(in, modifications, found)) return;
    valid = 0;
    // The texts name other classes than this one. Log readers know them so.
    ConsoleReport(found ? "LDAPSearchRes_rx: msg format error 3"
                        : "LDAPSearchReq_rx: attribute SEQ not found\r\n");
}

LDAPAddAttr_rx::LDAPAddAttr_rx(BerCursor& in) {
    const int fault = DecodeTypeAndValues(in, attr_name, values);
    if (fault == 0) return;
    in.Fail();
    ConsoleReport(fault == 1 ? "LDAPAddAttr_rx: format error 1" : "LDAPAddAttr_rx: format error 2");
}

LDAPAddReq_rx::LDAPAddReq_rx(LDAPBytes message) : LDAPMessage_rx(std::move(message)) {
    BerCursor in = Operation();
    entry = std::make_unique<ASN1String>(in);
    bool found = false;
    if (DecodeItems(in, attributes, found)) return;
    valid = 0;
    ConsoleReport(found ? "LDAPAddReq_rx: msg format error"
                        : "LDAPAddReq_rx: attribute SEQ not found\r\n");
}

LDAPDelReq_rx::LDAPDelReq_rx(LDAPBytes message) : LDAPMessage_rx(std::move(message)) {
    const BerCursor in = Operation();
    entry = std::make_unique<ASN1String>(in.at(), in.left());
}

LDAPModRDNReq_rx::LDAPModRDNReq_rx(LDAPBytes message) : LDAPMessage_rx(std::move(message)) {
    BerCursor in = Operation();
    entry = std::make_unique<ASN1String>(in);
    newrdn = std::make_unique<ASN1String>(in);
    deleteoldrdn = ASN1Integer(in).val;
    if (!in.ok()) valid = 0;
}
