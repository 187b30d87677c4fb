#include "portal/context/PortalContext.h"

#include <mysql.h>
#include <strings.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "common/CommandLine.h"
#include "common/ThrowText.h"
#include "kernel/OSConsole.h"
#include "ldap/LDAPSession.h"

namespace {

constexpr char kPoundSign[] = "\xC2\xA3";
constexpr char kIdentityPrefix[] = "portalContext";

constexpr char kIdentitySql[] =
    "SELECT users.customerId, contactid ,VirtualCallServer.primaryLDAPServer,VirtualCallServer.primaryLDAPUser, VirtualCallServer.primaryLDAPPassword,VirtualCallServer.voicemailFTPPassword,VirtualCallServer.HostName, ThemeId,CustomerType,emailsourceaddr,CustomerName, cca.attribvalue as TimeZone, '%s' as AuthName,'%s' as ServerName, ca.attribvalue as Currency FROM VirtualHost INNER JOIN VirtualCallServer on VirtualHost.VirtualCallServerid = VirtualCallServer.id INNER JOIN ( select CustomerContact.id as contactid,Customer.id as customerId,SubscriberId,ThemeId,CustomerType,CustomerName FROM CustomerContact INNER JOIN Customer on CustomerContact.customerid = Customer.id where username = '%s' ) as users on users.customerid = VirtualCallServer.customerid or users.SubscriberId = VirtualCallServer.customerid  LEFT JOIN CustomerContactAttrib as cca on cca.userid=contactid AND cca.attribname='timezone' LEFT JOIN CustomerAttribute as ca on ca.customerid=users.customerid AND ca.attribname='currency'WHERE serverName = '%s'";
enum {  // the columns of kIdentitySql
    kCustomerId,
    kContactId,
    kLdapServer,
    kLdapUser,
    kLdapPassword,
    kFtpPassword,
    kHostName,
    kThemeId,
    kCustomerType,
    kEmailSource,
    kCustomerName,
    kTimeZone,
    kAuthName,
    kServerName,
    kCurrency
};

constexpr char kZoneNameSql[] =
    "SELECT IF(@@session.time_zone = 'SYSTEM', @@system_time_zone, @@session.time_zone)";
constexpr char kUserRightsSql[] =
    "SELECT rightid FROM CustomerUserRight WHERE customerid = '%i' and guid = '%i' ";
constexpr char kAllRightsSql[] =
    "select rightsid from CustomerRights where customerid = '%i'union SELECT rightid FROM CustomerUserRight WHERE customerid = '%i' and guid = '%s' ";
constexpr char kReportMaskSql[] =
    "SELECT attribvalue FROM CustomerContactAttrib WHERE attribname = 'reportmask' AND userId = '%i' ";
constexpr char kSuperQueueSql[] =
    "SELECT attribvalue FROM CustomerContactAttrib WHERE attribname = 'superqueue' AND userId = '%i' ";
constexpr char kAdministratorSql[] =
    "SELECT attribvalue FROM CustomerContactAttrib WHERE attribname = 'administrator' AND userId = '%i' ";
constexpr char kSupervisorSql[] =
    "SELECT * FROM CallLogPermissions WHERE contactid='%i' and customerid='%s' and queue='1' ";
constexpr char kSearchGroupSql[] =
    "SELECT id FROM Customer WHERE (id in (%i,%i) or (subscriberid in (%i,%i) and subscriberId != 0)) and id != 0 ";
constexpr char kCurrencySql[] =
    "SELECT attribvalue FROM CustomerAttribute WHERE AttribName='currency' AND CustomerId=%d";
constexpr char kCustomerAttributeSql[] =
    "SELECT AttribValue FROM CustomerAttribute WHERE customerid='%s' AND AttribName = '%s'";

const char* Environment(const char* name) {
    const char* value = getenv(name);
    return value != nullptr ? value : "";
}

// The settings file's directory server stands in for the customer's own.
void UseSetting(const WebContext& ctx, const char* name, UString& field) {
    const char* setting = ctx.GetSetting(name);
    if (*setting != '\0') field = setting;
}

UString SenderAddress(const char* domain) {
    UString address;
    address.Format("DoNotReply@%s", domain);
    return address;
}

}  // namespace

PortalContext::PortalContext(const char* config_, const char* dirname_)
    : WebContext(config_, dirname_), protocol("http"), currency(kPoundSign) {}

PortalContext::~PortalContext() {
    // The base class saves a session that has a file.
    if (!savesSession_) session_prefix = "";
}

void PortalContext::SaveSession() {
    // Not once more at the end, should this fail.
    if (std::exchange(savesSession_, false)) SaveWebSessionVars(nullptr);
}

void PortalContext::LeaveSQLSession() {
    if (sql_session == nullptr) return;
    // Closing it politely would end the connection for the other process too.
    close(mysql_get_socket(sql_session->connection()));
    static_cast<void>(sql_session.release());
}

const char* PortalContext::GetVariable(const char* name) {
    return WebContext::GetVariable(name);
}

bool PortalContext::HasVariable(const char* name) {
    return WebContext::HasVariable(name);
}

const char* PortalContext::UserName() const {
    return Environment("REMOTE_USER");
}

const char* PortalContext::ServerName() const {
    return Environment("SERVER_NAME");
}

const UString& PortalContext::GetCompanyGUID() {
    static const UString none;
    return none;
}

void PortalContext::ReadSettings() {
    GetSQLSession();
    if (!ReadCachedIdentity()) ReadIdentity();
    UseTimeZone();
    CachedValue(zoneName, "portalContextZoneName", SqlText(kZoneNameSql), /*joined=*/false);
    BuildSecurityRights(contactId);
}

void PortalContext::CloseLDAPSession() {
    ldap_session.reset();
}

LDAPSession* PortalContext::GetLDAPSession(bool existingOnly) {
    if (ldap_session != nullptr)
        ldap_session->Flush();
    else if (!existingOnly)
        OpenLDAPSession();
    return ldap_session.get();
}

void PortalContext::OpenLDAPSession() {
    if (!ldapFailure_.IsEmpty()) ThrowText("%s", ldapFailure_.c_str());
    // Settings only: a browser must not send the portal, and its password, to another server.
    UseSetting(*this, "ldapuser", primaryLDAPUser);
    UseSetting(*this, "ldappassword", primaryLDAPPassword);
    UseSetting(*this, "ldapserver", primaryLDAPServer);
    try {
        ldap_session =
            std::make_unique<LDAPSession>(primaryLDAPServer.c_str(), primaryLDAPUser.c_str(),
                                          primaryLDAPPassword.c_str(), nullptr);
    } catch (const char* failure) {
        ldapFailure_ = failure;
        throw;
    }
}

SQLSession* PortalContext::GetSQLSession() {
    if (sql_session == nullptr) {
        if (*GetSetting("serverAddress") == '\0')
            ThrowText("The settings file is missing or names no database (serverAddress).");
        // Settings only: a browser must not send the portal to another server.
        const SQLAddress address = {GetSetting("serverAddress"), GetSetting("user"),
                                    GetSetting("password"), GetSetting("db")};
        sql_session = std::make_unique<SQLSession>(address);
        UseTimeZone();
    }
    return sql_session.get();
}

// Moves the database's and this process's clock to the user's zone. The session's day, its "now"
// and every time stamp read through it follow.
void PortalContext::UseTimeZone() {
    if (timeZone.IsEmpty()) return;
    sql_session->Execute(SqlText("SET time_zone = '%s'", SqlQuoted(timeZone)));
    setenv("TZ", timeZone.c_str(), /*overwrite=*/1);
}

void PortalContext::SetIds(int customer, int contact) {
    customerId = customer;
    contactId = contact;
    customerIdString.Format("%i", customerId);
    contactIdString.Format("%i", contactId);
    subscriberIdString.Format("%i", subscriberId);
}

bool PortalContext::ReadCachedIdentity() {
    const auto cached = [this](const char* column) {
        UString name(kIdentityPrefix);
        name += column;
        return HasWebSessionVar(name.c_str()) ? GetWebSessionVar(name.c_str())->Text() : "";
    };
    if (!HasWebSessionVar("portalContextAuthName") ||
        strcasecmp(cached("AuthName"), UserName()) != 0 ||
        strcasecmp(cached("ServerName"), ServerName()) != 0)
        return false;
    SetIds(atoi(cached("customerId")), atoi(cached("contactid")));
    primaryLDAPServer = cached("primaryLDAPServer");
    primaryLDAPUser = cached("primaryLDAPUser");
    primaryLDAPPassword = cached("primaryLDAPPassword");
    voicemailFTPPassword = cached("voicemailFTPPassword");
    hostName = cached("HostName");
    themeId = atoi(cached("ThemeId"));
    customerType = atoi(cached("CustomerType"));
    emailSourceAddress = SenderAddress(cached("emailsourceaddr"));
    customerName = cached("CustomerName");
    timeZone = cached("TimeZone");
    const char* symbol = cached("Currency");
    currency = *symbol != '\0' ? symbol : kPoundSign;
    administrator = cached("Administrator");
    return true;
}

// Everything kept for the session's former user or host goes: identity, rights, report criteria and
// page history.
void PortalContext::ForgetIdentity() {
    RemoveWebSessionVars(kIdentityPrefix);
    RemoveWebSessionVars("isSuperVisor");
    RemoveWebSessionVars("vFilter.");
    RemoveWebSessionVars("lastReportRun");
    RemoveWebSessionVars("_page");
}

void PortalContext::ReadIdentity() {
    ForgetIdentity();
    identityRead_ = true;
    SQLSession db(GetSQLSession());
    const SqlQuoted user(UserName());
    const SqlQuoted host(ServerName());
    db.Query(SqlText(kIdentitySql, user, host, user, host));
    if (!db.NextRow()) {
        SetIds(0, 0);
        ConsoleReport("Login details not allowed for this Portal %s for user %s\n", ServerName(),
                      UserName());
        return;
    }
    SetIds(db.IntColumn(kCustomerId), db.IntColumn(kContactId));
    primaryLDAPServer = db.Column(kLdapServer);
    primaryLDAPUser = db.Column(kLdapUser);
    primaryLDAPPassword = db.Column(kLdapPassword);
    voicemailFTPPassword = db.Column(kFtpPassword);
    hostName = db.Column(kHostName);
    themeId = db.IntColumn(kThemeId);
    customerType = db.IntColumn(kCustomerType);
    emailSourceAddress = SenderAddress(db.Column(kEmailSource));
    customerName = db.Column(kCustomerName);
    timeZone = db.Column(kTimeZone);
    currency = db.IsNull(kCurrency) ? kPoundSign : db.Column(kCurrency);
    SaveSqlSession(db.result(), db.row(), kIdentityPrefix);
    SetWebSessionVar("portalContextReauth", "0");
}

void PortalContext::SaveSqlSession(MYSQL_RES* result, char** row, const char* prefix) {
    RemoveWebSessionVars(prefix);
    const unsigned columns = mysql_num_fields(result);
    for (unsigned i = 0; i < columns; ++i) {
        UString name(prefix);
        name += mysql_fetch_field_direct(result, i)->name;
        SetWebSessionVar(name.c_str(), row[i] != nullptr ? row[i] : "");
    }
}

void PortalContext::BuildSecurityRights(int contact) {
    BuildSecurityRights(SqlText(kUserRightsSql, customerId, contact), contact);
}

void PortalContext::BuildSecurityRights(const UString& guid) {
    BuildSecurityRights(SqlText(kAllRightsSql, customerId, customerId, SqlQuoted(guid)),
                        atoi(guid.c_str()));
}

void PortalContext::BuildSecurityRights(const SqlText& rights, int contact) {
    CachedValue(accessRights, "portalContextUserRights", rights, /*joined=*/true);
    CachedValue(reportMask, "portalContextReportMask", SqlText(kReportMaskSql, contact),
                /*joined=*/false);
    CachedValue(superQueue, "portalContextSuperQueue", SqlText(kSuperQueueSql, contact),
                /*joined=*/false);
    CachedValue(administrator, "portalContextAdministrator", SqlText(kAdministratorSql, contact),
                /*joined=*/false);
}

// The session's value, or else the query's first row; `joined` takes every row, each followed by a
// comma, and closes with "0".
void PortalContext::CachedValue(UString& field, const char* variable, const SqlText& query,
                                bool joined) {
    if (HasWebSessionVar(variable) && !GetWebSessionVar(variable)->IsEmpty()) {
        field = GetWebSessionVar(variable)->Text();
        return;
    }
    SQLSession db(GetSQLSession());
    db.Query(query);
    std::string text;
    while (db.NextRow()) {
        text += db.Column(0);
        if (!joined) break;
        text += ',';
    }
    if (joined) text += '0';
    field = text.c_str();
    SetWebSessionVar(variable, field.c_str());
}

bool PortalContext::MayChange() {
    if (!HasOwnSession()) return false;
    if (!IsSessionIdForeign()) return true;
    RenewSessionId();
    return false;
}

bool PortalContext::HasUserRight(int rightId) const {
    const CommandLine rights(accessRights.c_str(), " \t,");
    for (int i = 0; i < rights.argc(); ++i) {
        if (atoi(rights[i]) == rightId) return true;
    }
    return false;
}

bool PortalContext::isCCSuperVisor() {
    if (!HasWebSessionVar("isSuperVisor")) {
        SQLSession db(GetSQLSession());
        db.Query(SqlText(kSupervisorSql, contactId, SqlQuoted(customerIdString)));
        if (!db.NextRow()) return false;
        SetWebSessionVar("isSuperVisor", "1");
    }
    return *GetWebSessionVar("isSuperVisor") == "1";
}

const char* PortalContext::GetCustomerSearchGroup() {
    if (customerType != 1) {
        customerSearchGroup.Format("%i", customerId);
    } else if (customerSearchGroup.IsEmpty()) {
        SQLSession db(GetSQLSession());
        db.Query(SqlText(kSearchGroupSql, customerId, subscriberId, customerId, subscriberId));
        std::string ids;
        while (db.NextRow()) {
            if (!ids.empty()) ids += "','";
            ids += db.Column(0);
        }
        customerSearchGroup = ids.c_str();
    }
    return customerSearchGroup.c_str();
}

void PortalContext::SetCurrency() {
    currency = kPoundSign;
    SQLSession db(GetSQLSession());
    db.Query(SqlText(kCurrencySql, customerId));
    if (db.NextRow() && !db.IsNull(0)) currency = db.Column(0);
}

UString PortalContext::GetCustomerAttribute(const char* name) {
    SQLSession db(GetSQLSession());
    db.Query(SqlText(kCustomerAttributeSql, SqlQuoted(customerIdString), SqlQuoted(name)));
    return db.NextRow() ? UString(db.Column(0)) : UString();
}
