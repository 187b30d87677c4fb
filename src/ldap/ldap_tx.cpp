#include "ldap/ldap_tx.h"

#include <algorithm>
#include <memory>

#include "kernel/OSConsole.h"
#include "ldap/LDAPMod.h"
#include "ldap/ldap.h"
#include "ldap/ldap_filter.h"
#include "network/socketX.h"

namespace {

constexpr int kVersion = 2;

void AddText(ASN1Sequence& to, const char* text) {
    to.Add2Seq(new ASN1String(text, 0));
}

void AddValues(ASN1Sequence& to, const LDAPMod& mod) {
    if ((mod.mod_op & LDAPMod::kBinary) != 0) {
        const auto* value = mod.mod_vals.modv_bvals;
        for (; value != nullptr && *value != nullptr; ++value) {
            const void* bytes = (*value)->data;
            to.Add2Seq(new ASN1String(static_cast<const unsigned char*>(bytes), (*value)->length));
        }
        return;
    }
    const auto* value = mod.mod_vals.modv_strvals;
    for (; value != nullptr && *value != nullptr; ++value)
        AddText(to, *value);
}

void AddTypeAndValues(ASN1Sequence& to, const LDAPMod& mod) {
    AddText(to, mod.mod_type);
    AddValues(to.Adopt(new ASN1Set), mod);
}

int Hand(Socket* s, int queue, OSBuf* buffer) {
    return queue != 0 ? s->Queue(buffer) : s->DataIndication(buffer);
}

// For messages that no single buffer holds.
int SendInPieces(LDAPMessage_tx& message, Socket* s, int queue, size_t total, size_t limit) {
    constexpr size_t kSlack = 10;
    const auto block = std::make_unique<unsigned char[]>(total + kSlack);
    unsigned char* out = block.get();
    message.BerEncode(out);

    int result = 0;
    for (size_t at = 0; at < total && result == 0; at += limit)
        result = Hand(s, queue, new OSBuf(block.get() + at, std::min(limit, total - at)));
    return result;
}

}  // namespace

LDAPMessage_tx::LDAPMessage_tx(int id) : msg_id(id) {
    Add2Seq(new ASN1Integer(id));
}

int LDAPMessage_tx::Send(Socket* s, int queue) {
    const size_t total = Length();
    const size_t limit = kKernelCfg.buf_size[3] - 100;
    if (total >= limit) return SendInPieces(*this, s, queue, total, limit);

    // At the end of the buffer, so that lower layers have room in front of it for their headers.
    auto buffer = std::make_unique<OSBuf>(kKernelCfg.buf_size[3]);
    unsigned char* out = buffer->UseBack(total);
    const unsigned char* end = out + total;
    BerEncode(out);
    if (out > end)
        ConsoleReport("LDAPMessage_tx::Send() - Buffer overlow %d", static_cast<int>(out - end));
    return Hand(s, queue, buffer.release());
}

LDAPBindReq_tx::LDAPBindReq_tx(const char* dn, const char* password, int method) {
    constexpr unsigned char kSimple = 0x80;
    tag = kLdapBindRequest;
    Add2Seq(new ASN1Integer(kVersion));
    AddText(*this, dn);
    Adopt(new ASN1String(password, 0)).tag = static_cast<uint8_t>(kSimple + method);
}

LDAPUnbindReq_tx::LDAPUnbindReq_tx() {
    tag = kLdapUnbindRequest;
}

LDAPSearchReq_tx::LDAPSearchReq_tx(const char* base, int scope, int deref, int sizelimit,
                                   int timelimit, int typesonly, const char* filter,
                                   const char* const* attrs) {
    tag = kLdapSearchRequest;
    AddText(*this, base);
    Add2Seq(new ASN1Enumerated(scope));
    Add2Seq(new ASN1Enumerated(deref));
    Add2Seq(new ASN1Integer(sizelimit));
    Add2Seq(new ASN1Integer(timelimit));
    Add2Seq(new ASN1Boolean(typesonly));
    auto parsed = std::make_unique<LDAPFilter_tx>(filter);
    if (parsed->valid == 0) return;
    Add2Seq(parsed.release());
    ASN1Sequence& list = Adopt(new ASN1Sequence);
    for (; attrs != nullptr && *attrs != nullptr; ++attrs)
        AddText(list, *attrs);
    valid = 1;
}

LDAPModifyReq_tx::LDAPModifyReq_tx(const char* dn, const LDAPMod* mods) {
    tag = kLdapModifyRequest;
    AddText(*this, dn);
    ASN1Sequence& list = Adopt(new ASN1Sequence);
    for (; mods != nullptr && mods->mod_type != nullptr; ++mods) {
        ASN1Sequence& change = list.Adopt(new ASN1Sequence);
        change.Add2Seq(new ASN1Enumerated(mods->mod_op & ~LDAPMod::kBinary));
        AddTypeAndValues(change.Adopt(new ASN1Sequence), *mods);
    }
}

LDAPAddReq_tx::LDAPAddReq_tx(const char* dn, const LDAPMod* mods) {
    tag = kLdapAddRequest;
    AddText(*this, dn);
    ASN1Sequence& list = Adopt(new ASN1Sequence);
    for (; mods != nullptr && mods->mod_type != nullptr; ++mods)
        AddTypeAndValues(list.Adopt(new ASN1Sequence), *mods);
}

LDAPDelReq_tx::LDAPDelReq_tx(const char* dn) : ASN1String(dn, 0) {
    tag = kLdapDelRequest;
}

LDAPModRDNReq_tx::LDAPModRDNReq_tx(const char* dn, const char* newrdn) {
    tag = kLdapModifyDNRequest;
    AddText(*this, dn);
    AddText(*this, newrdn);
    Add2Seq(new ASN1Boolean(0));
}

LDAPResult_tx::LDAPResult_tx(unsigned char responseTag, int code, const char* matched,
                             const char* message) {
    tag = responseTag;
    Add2Seq(new ASN1Enumerated(code));
    AddText(*this, matched);
    AddText(*this, message);
}

LDAPSearchResp_tx::LDAPSearchResp_tx(const char* dn, ASN1Sequence* attrs) {
    tag = kLdapSearchEntry;
    AddText(*this, dn);
    Add2Seq(attrs);
}
