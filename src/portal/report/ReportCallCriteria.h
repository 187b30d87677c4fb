// ReportCallCriteria.h: the criteria that narrow a report to some of the calls, whoever made them.
#pragma once

#include <string>
#include <string_view>

#include "common/UStringX.h"

class LumoraReportFilter;
class PortalContext;

// Trunk, trunk group, account code, contact, DDI, direction and shortest duration have no
// placeholder that every template carries: they follow the condition on the call's start, that is,
// [date]. Each counts only in a report whose form offers it. They name columns of CallLog without a
// table, so a template with such criteria writes [date] only where CallLog is read, and no second
// table there has columns of those names.
struct CallCriteria {
    std::string condition;  // "" or " AND ...", followed by a blank
    UString title;          // what they are, for people: "Trunk: ISDN 1 / Outbound"
};

// DDI, direction and duration are left to a template that has a placeholder for them. Throws the
// server's message, or why the trunks of a group cannot be read from the directory.
CallCriteria GetCallCriteria(PortalContext& ctx, const LumoraReportFilter& filter,
                             std::string_view templateText);
