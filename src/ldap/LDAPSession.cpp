#include "ldap/LDAPSession.h"

#include "common/ThrowText.h"
#include "kernel/OSConsole.h"
#include "ldap/lclient.h"
#include "ldap/ldap.h"

std::unique_ptr<UString> LDAPSession::proxyAddr;
unsigned short LDAPSession::proxyPort = 0;

namespace {

constexpr int kNoConnection = -1;

struct Defaults {
    UString server;
    UString user;
    UString password;
};
Defaults defaults;

// The first of the two that says something.
const char* FirstGiven(const char* text, const UString& fallback) {
    return text != nullptr && *text != '\0' ? text : fallback.c_str();
}

void FillEmpty(UString& text, const UString& fallback) {
    if (text.IsEmpty()) text = fallback;
}

}  // namespace

LDAPSession::LDAPSession(const char* server, const char* user, const char* password,
                         LDAPSession* parent) {
    Init(parent, server, user, password);
}

LDAPSession::LDAPSession(LDAPSession* parent, const char* server, const char* user,
                         const char* password) {
    Init(parent, server, user, password);
}

LDAPSession::LDAPSession(LDAPSession* parent) {
    Init(parent, nullptr, nullptr, nullptr);
}

LDAPSession::~LDAPSession() {
    Close();
}

void LDAPSession::SetDefaults(const char* server, const char* user, const char* password) {
    defaults = {server, user, password};
}

void LDAPSession::SetProxy(const char* host, unsigned short port) {
    proxyAddr = host != nullptr ? std::make_unique<UString>(host) : nullptr;
    proxyPort = port;
}

void LDAPSession::Init(LDAPSession* parent, const char* server, const char* user,
                       const char* password) {
    if (parent != nullptr) ldap_server = parent->ldap_server;
    ldap_server = UString(FirstGiven(server, ldap_server));
    FillEmpty(ldap_server, defaults.server);

    const bool userGiven = user != nullptr && *user != '\0';
    if (parent != nullptr && parent->ldap_server == ldap_server &&
        (!userGiven || parent->ldap_user == user)) {
        ldap_client = parent->ldap_client;
        ldap_user = parent->ldap_user;
        ldap_password = parent->ldap_password;
        return;
    }
    ldap_user = FirstGiven(user, defaults.user);
    ldap_password = FirstGiven(password, defaults.password);
    Connect(proxyAddr != nullptr ? proxyAddr->c_str() : nullptr, proxyPort);
}

void LDAPSession::CheckConnection() {
    if (ldap_client != nullptr && ldap_client->state == LDAPClient::BOUND) return;
    FillEmpty(ldap_server, defaults.server);
    FillEmpty(ldap_user, defaults.user);
    FillEmpty(ldap_password, defaults.password);
    Close();
    Connect(/*relay=*/nullptr, /*relayPort=*/0);
}

void LDAPSession::Connect(const char* relay, unsigned short relayPort) {
    if (ldap_server.IsEmpty()) {
        ConsoleReport("LDAPSession empty ldap_server");
        return;
    }
    ldap_client = std::make_shared<LDAPClient>(ldap_server.c_str(), kPort, relay, relayPort);
    created = true;
    if (ldap_client->state != LDAPClient::CONNECTED) {
        res = kNoConnection;
        UString text;
        text.Format("LDAPSession Failed to connect to server=%s user=%s\n", ldap_server.c_str(),
                    ldap_user.c_str());
        GiveUp(text);
    }
    // An empty password would be taken for an anonymous sign-in, which succeeds on many servers.
    res = ldap_client->SimpleBind(ldap_user.c_str(),
                                  ldap_password.IsEmpty() ? nullptr : ldap_password.c_str());
    if (res != kLdapSuccess) {
        UString text;
        text.Format("LDAPSession Failed to authenticate with server=%s user=%s\n",
                    ldap_server.c_str(), ldap_user.c_str());
        GiveUp(text);
    }
}

void LDAPSession::GiveUp(const UString& text) {
    Close();
    ConsoleReport("LDAPSession error %s", text.c_str());
    ThrowText("%s", text.c_str());
}

void LDAPSession::Close() {
    if (created && ldap_client != nullptr) ldap_client->Unbind();
    ldap_client.reset();
    created = false;
}

int LDAPSession::Search(const char* base, int scope, const char* filter, const char* const* attrs,
                        int typesonly, int sizelimit, int timelimit, int deref) {
    if (ldap_client == nullptr) return res = kNoConnection;
    res = ldap_client->Search(base, scope, filter, attrs, typesonly, sizelimit, timelimit, deref);
    if (res == kLdapLocalError) {
        Close();
        res = kNoConnection;
    }
    return res;
}

int LDAPSession::GetNextEntry(int& code) {
    code = kNoConnection;
    return ldap_client != nullptr ? ldap_client->GetNextEntry(code, /*depth=*/0) : 0;
}

const char* LDAPSession::CurrentObject() const {
    return ldap_client != nullptr ? ldap_client->CurrentObject() : nullptr;
}

int LDAPSession::FirstAttribute(char*& name, char*& value) {
    return ldap_client != nullptr ? ldap_client->FirstAttribute(name, value) : 0;
}

int LDAPSession::NextAttribute(char*& name, char*& value) {
    return ldap_client != nullptr ? ldap_client->NextAttribute(name, value) : 0;
}

void LDAPSession::Flush() {
    if (ldap_client != nullptr) ldap_client->Flush();
}

int LDAPSession::Modify(const char* dn, const LDAPMod* mods) {
    return res = ldap_client != nullptr ? ldap_client->Modify(dn, mods) : kNoConnection;
}

int LDAPSession::ModRDN(const char* dn, const char* newrdn) {
    return res = ldap_client != nullptr ? ldap_client->ModRDN(dn, newrdn) : kNoConnection;
}

int LDAPSession::Add(const char* dn, const LDAPMod* mods) {
    return res = ldap_client != nullptr ? ldap_client->Add(dn, mods) : kNoConnection;
}

int LDAPSession::Delete(const char* dn) {
    return res = ldap_client != nullptr ? ldap_client->Delete(dn) : kNoConnection;
}
