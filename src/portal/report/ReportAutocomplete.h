// ReportAutocomplete.h: what the criteria form offers while somebody types.
#pragma once

#include "cgiFramework/JSONPage.h"

class PortalContext;

// "autorespond": the entities whose names hold the argument "q", as a list of
//
//   {"label" : "Sales", "type" : "dept", "icon" : "Images/theme6/dept.svg"}
//
// by type and name, at most 50. Only of the kinds that are ticked, each by an argument that is
// "on": userTick, deptTick, groupTick, contactTick, queueTick, agentTick, companyTick, inboxTick,
// outDeptTick, teammateTick. Only what the caller's permissions for call logs allow; queues and
// agents by the permissions to act as such. Throws the server's message.
class ReportEntitySuggestions : public JSONPage {
  public:
    explicit ReportEntitySuggestions(PortalContext& ctx);
};

// "autorespond2": the same for what has no permissions of its own: with the argument "searchtype"
// "ddi" the numbers that outside callers dialled, with "tag" the tags of the shared inbox.
class ReportValueSuggestions : public JSONPage {
  public:
    explicit ReportValueSuggestions(PortalContext& ctx);
};
