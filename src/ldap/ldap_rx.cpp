#include "ldap/ldap_rx.h"

#include <cstring>
#include <utility>

#include "kernel/OSConsole.h"
#include "ldap/ldap.h"
#include "ldap/ldap_requests_rx.h"
#include "network/socketX.h"

namespace {

constexpr uint8_t kSequenceTag = 0x30;
constexpr uint8_t kIntegerTag = 0x02;
// Tag, length octets and the beginning of the content: no message is shorter.
constexpr size_t kHeadSize = 6;

// Reads the whole message, which may be garbage inside. Its block is exactly as large as it is, so
// that a sanitizer sees any step beyond.
int ReadBytes(Socket* s, LDAPBytes& message) {
    unsigned char head[kHeadSize];
    if (s->RecWait(head, kHeadSize) != 0) return kLdapReadTimeout;
    if (head[0] != kSequenceTag) {
        ConsoleReport("LDAPMessage::GetMsg: unexpected tag 0x%02x from %s", head[0],
                      s->RemoteIPText());
        return kLdapReadMalformed;
    }
    unsigned octets = 0;
    uint32_t length = 0;
    BerCursor in(head + 1, kHeadSize - 1);
    if (!in.PeekLength(0, octets, length)) return kLdapReadMalformed;

    message.size = static_cast<uint16_t>(1 + octets + length);
    if (message.size < kHeadSize) {
        ConsoleReport("LDAPMessage::GetMsg: impossible size %zu from %s", message.size,
                      s->RemoteIPText());
        return kLdapReadMalformed;
    }
    message.data = std::make_unique<unsigned char[]>(message.size);
    std::memcpy(message.data.get(), head, kHeadSize);
    const int rest = static_cast<int>(message.size - kHeadSize);
    return s->RecWait(message.data.get() + kHeadSize, rest) == 0 ? 0 : kLdapReadTimeout;
}

LDAPMessage_rx* NewBindRequest(LDAPBytes message, int& code) {
    auto bind = std::make_unique<LDAPBindReq_rx>(std::move(message));
    if (bind->valid != 0) return bind.release();
    ConsoleReport("LDAPBindReq_rx: bad packet format");
    code = kLdapReadMalformed;
    return nullptr;
}

// The object for an operation; null when it is none that this side understands.
LDAPMessage_rx* NewOperation(unsigned char opTag, LDAPBytes message, int& code) {
    switch (opTag) {
        case kLdapUnbindRequest:
            return new LDAPUnbindReq_rx(std::move(message));
        case kLdapDelRequest:
            return new LDAPDelReq_rx(std::move(message));
        case kLdapAbandonRequest:
        case kLdapCompareRequest:
            ConsoleReport("LDAPMessage_rx::GetMsg: add support for 0x%02x !", opTag);
            return nullptr;
        case kLdapBindRequest:
            return NewBindRequest(std::move(message), code);
        case kLdapBindResponse:
        case kLdapSearchDone:
        case kLdapModifyResponse:
        case kLdapAddResponse:
        case kLdapDelResponse:
        case kLdapModifyDNResponse:
        case kLdapCompareResponse:
            return new LDAPResult_rx(std::move(message));
        case kLdapSearchEntry:
            return new LDAPSearchRes_rx(std::move(message));
        case kLdapModifyRequest:
            return new LDAPModifyReq_rx(std::move(message));
        case kLdapAddRequest:
            return new LDAPAddReq_rx(std::move(message));
        case kLdapModifyDNRequest:
            return new LDAPModRDNReq_rx(std::move(message));
        default:
            ConsoleReport("LDAPMessage_rx::GetMsg: unexpected op tag 0x%02x\r\n", opTag);
            return nullptr;
    }
}

}  // namespace

LDAPMessage_rx::LDAPMessage_rx(LDAPBytes message) : ASN1Type(0), message_(std::move(message)) {
    BerCursor in(message_.data.get(), message_.size);
    BerHeader header;
    bool cut = false;
    // A message whose size was counted modulo 65,536 announces more than there is.
    if (!in.ReadHeaderCut(header, cut) || header.tag != kSequenceTag) return;
    tag = header.tag;
    SetLength(header.length);
    BerCursor content = in.Take(header.length);
    const ASN1Integer id(content);
    if (!content.ok() || id.tag != kIntegerTag || content.empty()) return;
    msg_id = static_cast<uint32_t>(id.val);
    op_ptr = content.at();
    op_tag = *op_ptr;
    valid = 1;
}

BerCursor LDAPMessage_rx::Operation() {
    if (valid == 0) return {nullptr, 0};
    BerCursor in(op_ptr, message_.size - (op_ptr - message_.data.get()));
    BerHeader header;
    bool cut = false;
    if (!in.ReadHeaderCut(header, cut) || cut) valid = 0;
    return in.Take(header.length);
}

LDAPMessage_rx* LDAPMessage_rx::Decode(LDAPBytes message, int* err) {
    int unused = 0;
    int& code = err != nullptr ? *err : unused;
    code = 0;
    LDAPMessage_rx envelope(std::move(message));
    if (envelope.valid == 0) {
        code = kLdapReadMalformed;
        return nullptr;
    }
    return NewOperation(envelope.op_tag, std::move(envelope.message_), code);
}

LDAPMessage_rx* LDAPMessage_rx::GetMsg(Socket* s, int* err) {
    LDAPBytes message;
    const int code = ReadBytes(s, message);
    if (code == 0) return Decode(std::move(message), err);
    if (err != nullptr) *err = code;
    return nullptr;
}

LDAPResult_rx::LDAPResult_rx(LDAPBytes message) : LDAPMessage_rx(std::move(message)) {
    BerCursor in = Operation();
    const ASN1Integer code(in);
    // Never 0: a broken answer to a bind must not sign anybody in.
    resultCode = in.ok() ? code.val : kLdapProtocolError;
    matchedDN = std::make_unique<ASN1String>(in);
    errorMessage = std::make_unique<ASN1String>(in);
    if (!in.ok()) valid = 0;
}

LDAPSearchRes_rx::LDAPSearchRes_rx(LDAPBytes message) : LDAPMessage_rx(std::move(message)) {
    BerCursor in = Operation();
    objectName = std::make_unique<ASN1String>(in);
    if (!in.ok()) {
        ConsoleReport("LDAPSearchRes_rx: msg format error (no objectName)");
        valid = 0;
        return;
    }
    BerHeader header;
    bool cut = false;
    const bool found = in.ReadHeaderCut(header, cut);
    const BerCursor list = in.Take(found ? header.length : 0);
    if (!found || cut || !in.empty()) {
        ConsoleReport("LDAPSearchRes_rx: msg format error 1");
        valid = 0;
    }
    if (!DecodeAttributes(list)) {
        ConsoleReport("LDAPSearchRes_rx: msg format error 3");
        valid = 0;
    }
}

bool LDAPSearchRes_rx::DecodeAttributes(BerCursor list) {
    constexpr size_t kUsualStrings = 20;
    attributes.reserve(kUsualStrings);
    while (!list.empty()) {
        BerHeader header;
        bool cut = false;
        if (!list.ReadHeaderCut(header, cut)) return false;
        if (!DecodeAttribute(list.Take(header.length)) || cut) return false;
    }
    return true;
}

bool LDAPSearchRes_rx::DecodeAttribute(BerCursor attribute) {
    ASN1String name(attribute);
    BerHeader header;
    bool cut = false;
    if (!attribute.ReadHeaderCut(header, cut)) return false;
    BerCursor values = attribute.Take(header.length);
    // A server that was asked for names only sends no value.
    ASN1String value = values.empty() ? ASN1String("", 0) : ASN1String(values);
    if (!values.ok()) return false;
    if (!values.empty() || !attribute.empty() || cut)
        ConsoleReport("LDAPSearchRes_rx: msg format error 2");
    attributes.push_back(std::move(name));
    attributes.push_back(std::move(value));
    return true;
}

int LDAPSearchRes_rx::FirstAttribute(char*& name, char*& value) {
    attr_itr = 0;
    return NextAttribute(name, value);
}

int LDAPSearchRes_rx::NextAttribute(char*& name, char*& value) {
    if (attr_itr >= attributes.size()) return 0;
    name = attributes[attr_itr].str.get();
    value = attributes[attr_itr + 1].str.get();
    attr_itr += 2;
    return 1;
}
