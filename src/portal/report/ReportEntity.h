// ReportEntity.h: whom a report is for, limited to whom the caller may see.
#pragma once

#include <string>
#include <vector>

#include "common/UStringX.h"

class PortalContext;

// A caller with rows in CallLogPermissions for a kind of entity sees only those that the rows
// allow; a caller without any sees all.
struct ReportEntity {
    std::string condition;    // follows a name column: ='Sales', IN ('a','b')
    UString name;             // for the report's heading, plain text
    bool restricted = false;  // the caller may not see everyone
};

// One user or department, by name. A name that the caller may not see gives a condition that
// nothing meets and a name that says so; one that does not exist gives a condition on it all the
// same. `everything`: the caller's permissions do not count.
ReportEntity GetUserEntity(PortalContext& ctx, const UString& name, bool everything);
ReportEntity GetDeptEntity(PortalContext& ctx, const UString& name, bool everything);
// All that the caller may see of these kinds; with neither of them, of both.
ReportEntity GetAllEntities(PortalContext& ctx, bool users, bool departments, bool everything);

// The condition on names that the server has quoted. Nothing meets it when there are none.
std::string NameListCondition(const std::vector<std::string>& quotedNames);
