// ManagerContext.h: the context that the program builds for a request.
#pragma once

#include "portal/context/PortalContext.h"

class ManagerContext : public PortalContext {
  public:
    bool gotCompany = false;
    UString companyGuid;

    // Paths as for WebContext. The user has been authenticated by the web server.
    ManagerContext(const char* config, const char* dirname);
    void ReadSettings() override;
    // The GUID of the user's company; empty for none. Read once a request.
    const UString& GetCompanyGUID() override;
};
