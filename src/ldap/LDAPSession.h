// LDAPSession.h: LDAPSession, a signed-in connection to a directory server.
#pragma once

#include <memory>

#include "common/UStringX.h"

class LDAPClient;
class LDAPMod;

// Connects and binds while it is constructed. Failure to do so throws a character string, which has
// been reported and outlives the unwinding; no operation throws.
//
//   LDAPSession session(context.GetLDAPSession());
//   session.Search("cn=Modules", 2, "(objectclass=Trunk)", nullptr, 0, 0, 0, 0);
//   LDAPTable trunks;
//   trunks.Fetch(session, /*append=*/true, /*unique=*/false);
class LDAPSession {
  public:
    // Every directory server of the system listens here.
    static constexpr unsigned short kPort = 4000;

    // An argument that is null or empty takes the default, the server that of the parent before.
    // With the parent's server, and no user or the parent's, the parent's connection is used too.
    LDAPSession(const char* server, const char* user, const char* password, LDAPSession* parent);
    LDAPSession(LDAPSession* parent, const char* server, const char* user, const char* password);
    explicit LDAPSession(LDAPSession* parent);
    ~LDAPSession();
    LDAPSession(const LDAPSession&) = delete;
    LDAPSession& operator=(const LDAPSession&) = delete;

    // Where sessions connect that are told nothing else. Null leaves a value empty.
    static void SetDefaults(const char* server, const char* user, const char* password);
    // The relay through which later sessions connect; a null host clears it.
    static void SetProxy(const char* host, unsigned short port);

    // Makes sure that the client is bound: when it is not, connects anew, without relay. Throws as
    // the constructors do.
    void CheckConnection();
    // Lets the client go; the session that made it signs off first.
    void Close();

    // As those of LDAPClient. Without a client, -1 or nothing. Search also answers -1, and closes
    // the session, when the server's answers are hopelessly out of step.
    int Search(const char* base, int scope, const char* filter, const char* const* attrs,
               int typesonly, int sizelimit, int timelimit, int deref);
    int GetNextEntry(int& code);
    const char* CurrentObject() const;
    int FirstAttribute(char*& name, char*& value);
    int NextAttribute(char*& name, char*& value);
    void Flush();
    int Modify(const char* dn, const LDAPMod* mods);
    int ModRDN(const char* dn, const char* newrdn);
    int Add(const char* dn, const LDAPMod* mods);
    int Delete(const char* dn);

    // Shared with the parent's session when it is the same, so that neither outlives it.
    std::shared_ptr<LDAPClient> ldap_client;
    int res = 0;           // result code of the last operation; -1: no connection
    bool created = false;  // this session made the client
    UString ldap_server;
    UString ldap_user;
    UString ldap_password;

    static std::unique_ptr<UString> proxyAddr;  // null: no relay
    static unsigned short proxyPort;

  private:
    void Init(LDAPSession* parent, const char* server, const char* user, const char* password);
    void Connect(const char* relay, unsigned short relayPort);
    // Closes, reports and throws.
    [[noreturn]] void GiveUp(const UString& text);
};
