// ReportTrunks.h: trunks as criteria of reports, and the reports that are about trunks.
#pragma once

#include <string>
#include <vector>

#include "common/UStringX.h"
#include "portal/report/ReportEntity.h"

// Is the report about the customer's trunks? Its entity is then a condition on a trunk's name, and
// the caller's permissions for people are in its second entity.
bool IsTrunkReport(const LumoraReportFilter& filter);
// The trunk that was chosen, those of the chosen group, or all of the customer; in the report of a
// day's capacity all that carried a call.
ReportEntity GetTrunkEntity(PortalContext& ctx, const LumoraReportFilter& filter);

// The names of a group's trunks in the directory, each quoted for SQL. A trunk may serve several
// customers: that is for the condition on their calls to tell apart. Throws a text that says what
// to do when the directory does not answer.
std::vector<std::string> TrunksOfGroup(PortalContext& ctx, const UString& group);

// "cn=ISDN 1,cn=Gateway A,cn=Modules" is ISDN 1 to people.
UString TrunkName(const UString& dn);
