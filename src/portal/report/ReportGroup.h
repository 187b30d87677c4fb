// ReportGroup.h: reporting groups: users, departments and other groups under one name.
#pragma once

#include <string>

#include "common/UStringX.h"

class PortalContext;

// The members of a group, and of the groups in it, whom the caller may see.
struct GroupMembers {
    std::string statement;  // a SELECT of their names in one column; empty: there is no such group
    bool restricted = false;
};

// A group is the caller's own or everyone's (contact 0); any other is like one that does not exist.
// A nested group is found by its name; one that holds itself is read once. A member counts under
// the name that the directory has for its telephone number today. `everything`: the caller's
// permissions do not count.
GroupMembers GetGroupMembers(PortalContext& ctx, const UString& name, bool everything);

// The id of a group that the caller may use, for a template that reads the members itself; 0: none.
int GetReportingGroupId(PortalContext& ctx, const UString& name);
