// What the server answers to each request.
#pragma once

#include <string>

#include "ldap/ldap_rx.h"
#include "tools/directoryd/Connection.h"
#include "tools/directoryd/Directory.h"

namespace directoryd {

// Who may sign in.
struct Credentials {
    std::string user;  // a name; compared without regard to case
    std::string password;
};

class Service {
  public:
    Service(Directory& directory, const Credentials& allowed)
        : directory_(directory), allowed_(allowed) {}

    // Carries one request out and writes the answers to the connection. What is no request ends
    // the connection.
    void Answer(Connection& client, LDAPBytes message);

  private:
    // A request's parts, in the message's bytes.
    struct Envelope {
        int id = 0;
        unsigned char operation = 0;
        BerCursor content{nullptr, 0};
        bool criticalControl = false;
    };

    static bool ReadEnvelope(const LDAPBytes& message, Envelope& envelope);
    static bool HasCriticalControl(BerCursor in);
    static void Reply(Connection& client, const Envelope& envelope, Result result);

    void Bind(Connection& client, const Envelope& envelope, LDAPBytes message);
    Result Search(Connection& client, const Envelope& envelope) const;
    Result Change(const Envelope& envelope, LDAPBytes message);

    Directory& directory_;
    const Credentials& allowed_;
};

}  // namespace directoryd
