// PortalContext.h: a request with who is asking: customer, contact, rights and connections.
#pragma once

#include <semaphore.h>

#include <memory>
#include <vector>

#include "cgiFramework/SQLSession.h"
#include "cgiFramework/WebContext.h"

class LDAPSession;

// One entry of the portal's menu. The dispatcher offers only what the user's rights allow.
struct MenuEntry {
    const char* caption;
    const char* pagename;
    bool current;
};

// The context of a page of the portal. The identity costs a query of several joins, so its result
// is kept in session variables ("portalContext...") while the same user stays on the same host.
class PortalContext : public WebContext {
  public:
    std::unique_ptr<LDAPSession> ldap_session;  // opened on first use
    std::unique_ptr<SQLSession> sql_session;    // opened on first use
    int customerType = 0;                       // 1: searches span the subscriber group
    int themeId = 0;
    int customerId = 0;
    int subscriberId = 0;
    int contactId = 0;  // the signed-in user; 0: not known to this portal
    UString customerSearchGroup;
    UString customerIdString;
    UString contactIdString;
    UString subscriberIdString;
    UString customerName;
    UString frontToken;
    UString primaryLDAPServer;
    UString primaryLDAPUser;
    UString primaryLDAPPassword;
    UString voicemailFTPPassword;
    UString hostName;
    UString emailSourceAddress;
    UString accessRights;  // right ids, each followed by a comma, and a closing "0"
    UString reportMask;    // decimal text: bit c allows report category c; empty allows all
    UString superQueue;
    UString administrator;
    UString protocol;
    UString timeZone;  // empty: the database server's
    UString zoneName;  // the zone that days and times are in, whoever's it is; for people to read
    UString currency;  // symbol, UTF-8
    bool authenticated = false;
    bool isScheduled = false;
    bool background = false;
    int chartMode = 2;
    sem_t* sem = nullptr;
    // What the frame shows as menu; filled by the dispatcher, empty on error pages.
    std::vector<MenuEntry> menu;

    PortalContext(const char* config, const char* dirname);
    ~PortalContext() override;

    const char* GetVariable(const char* name) override;
    bool HasVariable(const char* name) override;
    // Finds out who is asking. An unknown user or host leaves the ids 0.
    void ReadSettings() override;
    // The directory session, with no search running; connects on first use. Null when
    // `existingOnly` and there is none yet. Throws why there is none; a directory that does not
    // answer is asked once a request, since each time costs up to ten seconds. The context owns it.
    virtual LDAPSession* GetLDAPSession(bool existingOnly);
    // The database session; connects on first use. Throws the server's message. The context owns
    // it.
    virtual SQLSession* GetSQLSession();
    // The GUID of the user's company; empty here.
    virtual const UString& GetCompanyGUID();

    // The web server's authenticated user, and the virtual host asked for.
    const char* UserName() const;
    const char* ServerName() const;

    // Writes the session now and leaves its file alone from then on, also at the end. For a request
    // that goes on for long: what others write meanwhile stays. Throws the lock's text.
    void SaveSession();
    // The session's file stays as it is: this request only looks on.
    void LeaveSession() { savesSession_ = false; }
    // Lets go of the database connection without a word to the server: the other process, made by
    // fork, goes on using it.
    void LeaveSQLSession();
    // Ends the directory session, if there is one; the next GetLDAPSession opens another.
    void CloseLDAPSession();

    // Replaces the session variables that begin with `prefix` by the row's columns.
    void SaveSqlSession(st_mysql_res* result, char** row, const char* prefix);
    // Fills the four rights fields, each from its session variable or else from the database.
    void BuildSecurityRights(int contactId);
    // The same for the user of this id, whose rights include those of the whole customer.
    void BuildSecurityRights(const UString& guid);
    // May this request change anything? Only one that carries the id of an existing session of its
    // address, and only where that session was already this user's on this host before it came: a
    // browser sends the user's password with forms of other sites too, but never the session's id.
    // Known after ReadSettings.
    // An id that the browser was given by others counts for nothing: the session then gets a new
    // one, which the page of this request carries, so that sending its form again works.
    bool MayChange();
    // Was the session this user's on this host before this request came?
    bool HasOwnSession() const { return HasExistingSession() && !identityRead_ && contactId != 0; }
    bool HasUserRight(int rightId) const;
    bool HasSuperQueue() const { return superQueue == "1"; }
    bool isAdministrator() const { return contactId == 1 || administrator == "1"; }
    // May this user supervise any queue? Asks the database once a session.
    bool isCCSuperVisor();
    // The customer ids to search, joined by "','" for use inside IN('...').
    const char* GetCustomerSearchGroup();
    void SetCurrency();
    // A setting of the caller's customer, or an empty text.
    UString GetCustomerAttribute(const char* name);

  private:
    bool ReadCachedIdentity();
    void ReadIdentity();
    void ForgetIdentity();
    void SetIds(int customer, int contact);
    void UseTimeZone();
    void OpenLDAPSession();
    void CachedValue(UString& field, const char* variable, const SqlText& query, bool joined);

    void BuildSecurityRights(const SqlText& rights, int contact);

    UString ldapFailure_;  // why there is no directory session
    bool savesSession_ = true;
    bool identityRead_ = false;  // by this request, since its session knew no such user and host
};
