// LumoraSavedReportModule.h: quick reports: criteria that a user keeps under a name.
#pragma once

#include "cgiFramework/WebPage.h"

class LumoraReportFilter;
class PortalContext;
struct ReportDefinition;

// The box "Quick Reports": the caller's quick reports, each with a link that runs it again and one
// that removes it. Empty, and not to be shown, when there are none. `report` is the page name of
// the report beside it, which a removal comes back to; empty for the catalogue. The constructor
// reads them and throws the server's message.
class LumoraSavedReportModule : public WebDiv {
  public:
    explicit LumoraSavedReportModule(PortalContext& ctx, const char* report = "");
    bool any() const { return any_; }

  private:
    bool any_ = false;
};

// Does what "removeQReport" asks: the caller's quick report of that "id" goes, if this request may
// change something. Answers what to tell the user, or null. Another user's id is like one that
// does not exist.
const char* RemoveQuickReport(PortalContext& ctx);

// Keeps the criteria of this run when "save" is ticked, under the name "savedReportDesc" or else
// the report's. Answers what to tell the user, plain text; empty when nothing was asked. What is
// kept already, criteria and name, is not kept again.
UString SaveQuickReport(PortalContext& ctx, const ReportDefinition& definition,
                        const LumoraReportFilter& filter);
