#include "tools/directoryd/Service.h"

#include <utility>

#include "kernel/OSConsole.h"
#include "ldap/ldap.h"
#include "ldap/ldap_requests_rx.h"
#include "ldap/ldap_tx.h"
#include "tools/directoryd/Search.h"

namespace directoryd {

namespace {

constexpr unsigned char kExtendedRequest = 0x77;
constexpr unsigned char kExtendedResponse = 0x78;
constexpr unsigned char kControls = 0xA0;
constexpr unsigned char kBoolean = 0x01;

std::string TextOf(const ASN1String& element) {
    return {element.str.get(), element.length};
}

std::vector<std::string> TextsOf(const std::vector<std::unique_ptr<ASN1String>>& elements) {
    std::vector<std::string> texts;
    for (const auto& element : elements)
        texts.push_back(TextOf(*element));
    return texts;
}

// 0 for what is no request, or has no answer.
unsigned char ResponseTo(unsigned char operation) {
    switch (operation) {
        case kLdapBindRequest:
            return kLdapBindResponse;
        case kLdapSearchRequest:
            return kLdapSearchDone;
        case kLdapModifyRequest:
            return kLdapModifyResponse;
        case kLdapAddRequest:
            return kLdapAddResponse;
        case kLdapDelRequest:
            return kLdapDelResponse;
        case kLdapModifyDNRequest:
            return kLdapModifyDNResponse;
        case kLdapCompareRequest:
            return kLdapCompareResponse;
        case kExtendedRequest:
            return kExtendedResponse;
        default:
            return 0;
    }
}

const char* Explain(Result result) {
    switch (result) {
        case Result::kProtocolError:
            return "not understood";
        case Result::kAuthMethodNotSupported:
            return "only simple binds";
        case Result::kAdminLimitExceeded:
            return "the entry is too large or too deep";
        case Result::kConstraintViolation:
            return "one value an attribute; the GUID never changes";
        case Result::kInsufficientAccess:
            return "sign in first";
        case Result::kNamingViolation:
            return "the name's attribute cannot change";
        case Result::kNotAllowedOnRDN:
            return "the name changes by modify-RDN";
        default:
            return "";
    }
}

Result Add(Directory& directory, const LDAPAddReq_rx& request) {
    std::vector<Attribute> attributes;
    for (const auto& a : request.attributes) {
        if (a->values.size() != 1) return Result::kConstraintViolation;
        attributes.push_back({TextOf(*a->attr_name), TextOf(*a->values[0])});
    }
    return directory.Add(TextOf(*request.entry), std::move(attributes));
}

Result Modify(Directory& directory, const LDAPModifyReq_rx& request) {
    std::vector<directoryd::Change> changes;
    for (const auto& m : request.modifications)
        changes.push_back({m->op, TextOf(*m->attr_name), TextsOf(m->values)});
    return directory.Modify(TextOf(*request.object), changes);
}

}  // namespace

bool Service::ReadEnvelope(const LDAPBytes& message, Envelope& envelope) {
    BerCursor in(message.data.get(), message.size);
    BerHeader header;
    BerCursor content = in.TakeElement(header);
    const ASN1Integer id(content);
    envelope.id = id.val;
    envelope.content = content.TakeElement(header);
    envelope.operation = header.tag;
    if (!content.ok() || id.val < 0) return false;
    envelope.criticalControl = HasCriticalControl(content);
    return true;
}

// What follows the operation: controls, of which none is known here.
bool Service::HasCriticalControl(BerCursor in) {
    BerHeader header;
    BerCursor list = in.TakeElement(header);
    if (!list.ok() || header.tag != kControls) return false;
    while (!list.empty()) {
        BerCursor control = list.TakeElement(header);
        const ASN1String type(control);
        if (!control.ok() || control.empty()) continue;
        if (*control.at() == kBoolean && ASN1Integer(control).val != 0) return true;
    }
    return false;
}

void Service::Reply(Connection& client, const Envelope& envelope, Result result) {
    LDAPMessage_tx message(envelope.id);
    message.Add2Seq(new LDAPResult_tx(ResponseTo(envelope.operation), static_cast<int>(result), "",
                                      Explain(result)));
    message.Send(&client, 0);
}

void Service::Answer(Connection& client, LDAPBytes message) {
    Envelope envelope;
    const bool readable = ReadEnvelope(message, envelope);
    if (readable && envelope.operation == kLdapAbandonRequest) return;
    if (!readable || ResponseTo(envelope.operation) == 0) {
        if (!readable || envelope.operation != kLdapUnbindRequest)
            ConsoleReport("directoryd: %s sent no request, closed", client.RemoteIPText());
        client.closing = true;
        return;
    }
    if (envelope.criticalControl)
        Reply(client, envelope, Result::kUnavailableCriticalExtension);
    else if (envelope.operation == kLdapBindRequest)
        Bind(client, envelope, std::move(message));
    else if (envelope.operation == kLdapCompareRequest || envelope.operation == kExtendedRequest)
        Reply(client, envelope, Result::kProtocolError);
    else if (!client.bound)
        Reply(client, envelope, Result::kInsufficientAccess);
    else if (envelope.operation == kLdapSearchRequest)
        Reply(client, envelope, Search(client, envelope));
    else
        Reply(client, envelope, Change(envelope, std::move(message)));
}

void Service::Bind(Connection& client, const Envelope& envelope, LDAPBytes message) {
    constexpr int kOldestVersion = 2;
    constexpr int kNewestVersion = 3;
    client.bound = false;
    const std::unique_ptr<LDAPMessage_rx> decoded(
        LDAPMessage_rx::Decode(std::move(message), nullptr));
    const auto* const bind = dynamic_cast<const LDAPBindReq_rx*>(decoded.get());
    Result result = Result::kSuccess;
    if (bind == nullptr || bind->method != 0)
        result = Result::kAuthMethodNotSupported;
    else if (bind->version < kOldestVersion || bind->version > kNewestVersion)
        result = Result::kProtocolError;
    else if (!SameText(TextOf(*bind->name), allowed_.user) ||
             TextOf(*bind->cred) != allowed_.password)
        result = Result::kInvalidCredentials;
    client.bound = result == Result::kSuccess;
    Reply(client, envelope, result);
}

Result Service::Search(Connection& client, const Envelope& envelope) const {
    SearchRequest request;
    if (!request.Decode(envelope.content)) return Result::kProtocolError;
    const Entry* const base = directory_.Find(request.base);
    if (base == nullptr) return Result::kNoSuchObject;

    int sent = 0;
    bool more = false;  // than the size limit
    directory_.Visit(*base, request.scope, [&](const Entry& entry) {
        if (!request.filter->Fits(entry)) return true;
        more = request.sizeLimit > 0 && sent == request.sizeLimit;
        if (more) return false;
        LDAPMessage_tx message(envelope.id);
        message.Add2Seq(new LDAPSearchResp_tx(entry.DN().c_str(), request.Select(entry).release()));
        message.Send(&client, 0);
        ++sent;
        return true;
    });
    return more ? Result::kSizeLimitExceeded : Result::kSuccess;
}

Result Service::Change(const Envelope& envelope, LDAPBytes message) {
    const std::unique_ptr<LDAPMessage_rx> request(
        LDAPMessage_rx::Decode(std::move(message), nullptr));
    if (request == nullptr || request->valid == 0) return Result::kProtocolError;
    switch (envelope.operation) {
        case kLdapAddRequest:
            return Add(directory_, static_cast<const LDAPAddReq_rx&>(*request));
        case kLdapModifyRequest:
            return Modify(directory_, static_cast<const LDAPModifyReq_rx&>(*request));
        case kLdapDelRequest:
            return directory_.Delete(TextOf(*static_cast<const LDAPDelReq_rx&>(*request).entry));
        default: {
            const auto& rename = static_cast<const LDAPModRDNReq_rx&>(*request);
            return directory_.Rename(TextOf(*rename.entry), TextOf(*rename.newrdn));
        }
    }
}

}  // namespace directoryd
