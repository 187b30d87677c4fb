// lclient.h: LDAPClient, one synchronous conversation with a directory server.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ldap/ldap_rx.h"
#include "network/socketX.h"

class LDAPMod;

// Every operation waits for its answer and returns an LDAP result code: the server's own, or one of
// those in LDAPResultCode. Nothing throws. One search runs at a time: any other operation reads and
// drops what is left of it.
//
// When a message cannot be sent, or none comes back, the connection is closed and the state is
// FAILED: an answer that comes later would be taken for that to the next request.
class LDAPClient {
  public:
    enum State { FAILED, CONNECTED, BOUND, FINISHED };

    // Connects to the host, or to the relay when `relay_host` is given, which is then told where to
    // connect to. The outcome is in `state`.
    LDAPClient(const char* host, unsigned short port, const char* relay_host,
               unsigned short relay_port);
    LDAPClient(const LDAPClient&) = delete;
    LDAPClient& operator=(const LDAPClient&) = delete;

    // The id of the next request.
    uint32_t NextTxId();

    // A null password stands for the fixed one that directories of the system know.
    int SimpleBind(const char* user, const char* password);
    int Unbind();
    // 0 when a first entry is current. `attrs` is ended by null; null asks for all of them.
    int Search(const char* base, int scope, const char* filter, const char* const* attrs,
               int typesonly, int sizelimit, int timelimit, int deref);
    // 1: a new entry is current; 0: the search is over, and `code` its outcome. Callers begin with
    // depth 0; it counts the stale answers skipped.
    int GetNextEntry(int& code, int depth);
    // Drops what is left of a running search.
    void Flush();

    // Of the current entry; they live until the next one. Null, or 0, without entry.
    const char* CurrentObject() const;
    int FirstAttribute(char*& name, char*& value);
    int NextAttribute(char*& name, char*& value);

    // `mods` ends with a record without type.
    int Modify(const char* dn, const LDAPMod* mods);
    int Add(const char* dn, const LDAPMod* mods);
    int Delete(const char* dn);
    int ModRDN(const char* dn, const char* newrdn);

    int deref = 0;
    int timelimit = 0;
    int sizelimit = 0;
    std::string error;                         // free for the caller's use
    uint32_t tx_msg_id = 0;                    // the last id used
    std::unique_ptr<LDAPSearchRes_rx> result;  // the current entry; null: no search is running
    Socket socket;
    State state = FAILED;

  private:
    bool SendHeaderToRelay(const char* host, unsigned short port);
    // Takes the operation over and sends it with the next id.
    bool Send(ASN1Type* operation);
    std::unique_ptr<LDAPMessage_rx> Receive();
    void Fail();
    int FinishSearch(const LDAPResult_rx& done, int& code, int depth);
    // The road of every operation that changes the directory; `name` is what reports call it.
    int Change(const char* name, ASN1Type* operation, unsigned char responseTag);
};
