// ReportEntity.h: whom a report is for, limited to whom the caller may see.
#pragma once

#include <string>
#include <vector>

#include "common/UStringX.h"

class LumoraReportFilter;
class PortalContext;

// A caller with rows in CallLogPermissions for a type of entity sees only those that the rows
// allow; a caller without any sees all. Queues go by the type Department and the right "queue",
// agents by the type User and the right "agent". Nothing here fails for lack of permission: what
// may not be seen gives a condition that nothing meets and a name that says so. What does not
// exist, or is another customer's, gives a condition on its name, which no call of the caller's
// customer meets, or an empty list.
struct ReportEntity {
    std::string condition;    // follows a name column: ='Sales', IN ('a','b')
    std::string subquery;     // the same as a sub-query where that is possible: IN (SELECT ...)
    UString name;             // for the report's heading, plain text
    bool restricted = false;  // the caller may not see everyone
    bool chosen = false;      // the criteria name somebody
};

// One user, department, queue or agent, by name. `everything`: the caller's permissions do not
// count.
ReportEntity GetUserEntity(PortalContext& ctx, const UString& name, bool everything);
ReportEntity GetDeptEntity(PortalContext& ctx, const UString& name, bool everything);
ReportEntity GetQueueEntity(PortalContext& ctx, const UString& name, bool everything);
ReportEntity GetAgentEntity(PortalContext& ctx, const UString& name, bool everything);
// The members of a reporting group that is the caller's own or everyone's, by the telephone numbers
// that the group keeps, and those of the groups in it. An empty group is "AND FALSE".
ReportEntity GetGroupEntity(PortalContext& ctx, const UString& name, bool everything);
// The people of a company, and its departments where `departments`.
ReportEntity GetCompanyEntity(PortalContext& ctx, const UString& name, bool departments,
                              bool everything);
// A condition on teammates' ids, by first and last name.
ReportEntity GetTeammateEntity(PortalContext& ctx, const UString& name, bool everything);
// A condition on inboxes' ids: the inbox of that id, or else of that name, or with neither all.
// Private ones count only where the customer's setting "privateib" is 1.
ReportEntity GetInboxEntity(PortalContext& ctx, const UString& id, const UString& name,
                            bool everything);

// What the criteria choose. With nothing chosen, all that the caller may see of the kinds that the
// report offers; with none of them, of users and departments.
ReportEntity GetChosenEntity(PortalContext& ctx, const LumoraReportFilter& filter);
// The same of the report's second choice, "Show:".
ReportEntity GetSecondEntity(PortalContext& ctx, const LumoraReportFilter& filter);

// May the caller see every teammate of the shared inbox?
bool SeesAllTeammates(PortalContext& ctx);

// The condition on names that the server has quoted. Nothing meets it when there are none.
std::string NameListCondition(const std::vector<std::string>& quotedNames);
