#include "portal/context/ManagerContext.h"

namespace {

constexpr char kCompanySql[] =
    "SELECT attribvalue from CustomerContactAttrib WHERE userid=%i and attribname ='company'";

}  // namespace

ManagerContext::ManagerContext(const char* config_, const char* dirname_)
    : PortalContext(config_, dirname_) {
    private_data = this;
    authenticated = true;
}

void ManagerContext::ReadSettings() {
    PortalContext::ReadSettings();
}

const UString& ManagerContext::GetCompanyGUID() {
    if (!gotCompany) {
        SQLSession db(GetSQLSession());
        db.Query(SqlText(kCompanySql, contactId));
        if (db.NextRow() && !db.IsNull(0)) companyGuid = db.Column(0);
        gotCompany = true;
    }
    return companyGuid;
}
