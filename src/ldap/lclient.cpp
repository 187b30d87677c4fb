#include "ldap/lclient.h"

#include <utility>

#include "common/UStringX.h"
#include "kernel/OSConsole.h"
#include "ldap/ldap.h"
#include "ldap/ldap_tx.h"

namespace {

// What directories of the system accept from those who have no password of their own.
constexpr char kDefaultCredential[] = "735190462803";
constexpr int kSimpleMethod = 0;
// Answers this close behind the expected id belong to a search that was given up.
constexpr uint32_t kStaleWindow = 5;
constexpr int kMaxDepth = 6;
constexpr char kRelayMarker = '\x01';

// How far `id` is behind `expected`, ids running from 0 to 2^31 - 1.
uint32_t Behind(uint32_t expected, uint32_t id) {
    return (expected - id) & 0x7FFFFFFF;
}

bool Given(const char* text) {
    return text != nullptr && *text != '\0';
}

}  // namespace

LDAPClient::LDAPClient(const char* host, unsigned short port, const char* relay_host,
                       unsigned short relay_port)
    : socket(Socket::TCP_CLIENT, Given(relay_host) ? relay_host : host,
             Given(relay_host) ? relay_port : port) {
    if (socket.state != Socket::CONNECTED) return;
    if (Given(relay_host) && !SendHeaderToRelay(host, port)) return;
    state = CONNECTED;
}

bool LDAPClient::SendHeaderToRelay(const char* host, unsigned short port) {
    UString header;
    header.Format("%c%s:%u", kRelayMarker, host, static_cast<unsigned>(port));
    return socket.DataIndication(new OSBuf(header.c_str(), header.GetLength())) == 0;
}

uint32_t LDAPClient::NextTxId() {
    if (++tx_msg_id > INT32_MAX) tx_msg_id = 0;
    return tx_msg_id;
}

void LDAPClient::Fail() {
    socket.Close();
    state = FAILED;
}

bool LDAPClient::Send(ASN1Type* operation) {
    LDAPMessage_tx message(static_cast<int>(NextTxId()));
    message.Add2Seq(operation);
    if (message.Send(&socket, /*queue=*/0) == 0) return true;
    Fail();
    return false;
}

std::unique_ptr<LDAPMessage_rx> LDAPClient::Receive() {
    int err = 0;
    std::unique_ptr<LDAPMessage_rx> message(LDAPMessage_rx::GetMsg(&socket, &err));
    if (err != 0) Fail();
    return message;
}

int LDAPClient::SimpleBind(const char* user, const char* password) {
    if (socket.state != Socket::CONNECTED) {
        ConsoleReport("LDAPClient::SimpleBind: socket not connected");
        return kLdapServerDown;
    }
    if (password == nullptr) password = kDefaultCredential;
    if (!Send(new LDAPBindReq_tx(user, password, kSimpleMethod))) {
        ConsoleReport("LDAPClient::SimpleBind: failed to send bind request");
        return kLdapServerDown;
    }
    const auto answer = Receive();
    if (answer == nullptr) return kLdapServerDown;
    if (answer->op_tag != kLdapBindResponse) return kLdapProtocolError;
    const int code = static_cast<const LDAPResult_rx&>(*answer).resultCode;
    if (code == kLdapSuccess) state = BOUND;
    return code;
}

int LDAPClient::Unbind() {
    if (state == BOUND) {
        Send(new LDAPUnbindReq_tx);
        socket.Close();
    }
    state = FINISHED;
    return kLdapSuccess;
}

int LDAPClient::Search(const char* base, int scope, const char* filter, const char* const* attrs,
                       int typesonly, int size, int time, int derefAliases) {
    static constexpr const char* kAllAttributes[] = {"*", nullptr};
    if (socket.state != Socket::CONNECTED) {
        ConsoleReport("LDAPClient::Search: socket not connected");
        state = FAILED;
        return kLdapServerDown;
    }
    if (state != BOUND) return kLdapInsufficientAccess;
    Flush();
    auto request =
        std::make_unique<LDAPSearchReq_tx>(base, scope, derefAliases, size, time, typesonly, filter,
                                           attrs != nullptr ? attrs : kAllAttributes);
    if (request->valid == 0) return kLdapFilterError;
    if (!Send(request.release())) {
        ConsoleReport("LDAPClient::Search: send failed");
        return kLdapServerDown;
    }
    int code = 0;
    return GetNextEntry(code, /*depth=*/0) == 1 ? kLdapSuccess : code;
}

int LDAPClient::GetNextEntry(int& code, int depth) {
    result.reset();
    std::unique_ptr<LDAPMessage_rx> message;
    do {
        message = Receive();
        if (message == nullptr) {
            code = kLdapServerDown;
            return 0;
        }
        // An entry of a search that was given up must not be taken for one of this search.
    } while (message->op_tag == kLdapSearchEntry && message->msg_id != tx_msg_id &&
             Behind(tx_msg_id, message->msg_id) < kStaleWindow);

    switch (message->op_tag) {
        case kLdapSearchEntry:
            code = kLdapSuccess;
            result.reset(static_cast<LDAPSearchRes_rx*>(message.release()));
            return 1;
        case kLdapSearchDone:
            return FinishSearch(static_cast<const LDAPResult_rx&>(*message), code, depth);
        default:
            code = kLdapProtocolError;
            return 0;
    }
}

int LDAPClient::FinishSearch(const LDAPResult_rx& done, int& code, int depth) {
    code = done.resultCode;
    if (done.msg_id == tx_msg_id) return 0;
    ConsoleReport("LDAPClient::GetNextEntry SEARCH_RESULT expected id %lu got %lu",
                  static_cast<unsigned long>(tx_msg_id), static_cast<unsigned long>(done.msg_id));
    if (Behind(tx_msg_id, done.msg_id) < kStaleWindow && depth < kMaxDepth) {
        ConsoleReport("LDAPClient::GetNextEntry attempting synchronisation recovery");
        return GetNextEntry(code, depth + 1);
    }
    code = kLdapLocalError;
    return 0;
}

void LDAPClient::Flush() {
    int code = 0;
    while (result != nullptr)
        GetNextEntry(code, /*depth=*/0);
}

const char* LDAPClient::CurrentObject() const {
    return result != nullptr ? result->objectName->str.get() : nullptr;
}

int LDAPClient::FirstAttribute(char*& name, char*& value) {
    return result != nullptr ? result->FirstAttribute(name, value) : 0;
}

int LDAPClient::NextAttribute(char*& name, char*& value) {
    return result != nullptr ? result->NextAttribute(name, value) : 0;
}

int LDAPClient::Change(const char* name, ASN1Type* operation, unsigned char responseTag) {
    std::unique_ptr<ASN1Type> request(operation);
    if (socket.state != Socket::CONNECTED) {
        ConsoleReport("LDAPClient::%s: socket not connected", name);
        return kLdapServerDown;
    }
    Flush();
    if (!Send(request.release())) {
        ConsoleReport("LDAPClient::%s: send failed", name);
        return kLdapServerDown;
    }
    const auto answer = Receive();
    if (answer == nullptr) return kLdapServerDown;
    if (answer->op_tag != responseTag) return kLdapProtocolError;
    const int code = static_cast<const LDAPResult_rx&>(*answer).resultCode;
    if (code != kLdapSuccess) ConsoleReport("LDAP %s: result=%d", name, code);
    return code;
}

int LDAPClient::Modify(const char* dn, const LDAPMod* mods) {
    return Change("Modify", new LDAPModifyReq_tx(dn, mods), kLdapModifyResponse);
}

int LDAPClient::Add(const char* dn, const LDAPMod* mods) {
    return Change("Add", new LDAPAddReq_tx(dn, mods), kLdapAddResponse);
}

int LDAPClient::Delete(const char* dn) {
    return Change("Delete", new LDAPDelReq_tx(dn), kLdapDelResponse);
}

int LDAPClient::ModRDN(const char* dn, const char* newrdn) {
    return Change("ModRDN", new LDAPModRDNReq_tx(dn, newrdn), kLdapModifyDNResponse);
}
