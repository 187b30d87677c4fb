#include "portal/report/ReportDirectory.h"

#include <strings.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cgiFramework/LDAPDropDown.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"

namespace {

constexpr char kTrunksSql[] = "SELECT dn FROM LDAPTrunks WHERE customerId IN('%s')";

constexpr char kPrefixReport[] = "trunk2trunk";

constexpr DirectoryCriterion kCriteria[] = {
    {"trunkgroup", "For Trunk Group:", "All trunk groups", "", "(objectclass=TrunkGroup)", "cn",
     /*mirrored=*/false, &LumoraReportFilter::trunkgroup,
     [](const LumoraReportFilter& filter) { return filter.hasTrunkGroup; }},
    {"trunk", "For Trunk", "All trunks", "cn=Modules", "(objectclass=Trunk)", "dn",
     /*mirrored=*/true, &LumoraReportFilter::trunk,
     [](const LumoraReportFilter& filter) { return filter.hasTrunk; }},
    {"extra", "For Prefix", "All prefixes", "cn=Trunk2Trunk,cn=LeastCostCallPlans",
     "(objectclass=LCREntry)", "cn", /*mirrored=*/false, &LumoraReportFilter::extra,
     [](const LumoraReportFilter& filter) { return filter.report == kPrefixReport; }},
};

// One directory serves all customers.
void KeepOwnTrunks(PortalContext& ctx, LDAPDropDownValue& value) {
    std::vector<std::string> own;
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kTrunksSql, SqlFragment(ctx.GetCustomerSearchGroup())));
    while (db.NextRow())
        own.emplace_back(db.Column(0));
    std::erase_if(value.choices, [&](const LDAPDropDownChoice& choice) {
        return std::none_of(own.begin(), own.end(), [&](const std::string& dn) {
            return strcasecmp(dn.c_str(), choice.value.c_str()) == 0;
        });
    });
}

}  // namespace

std::span<const DirectoryCriterion> DirectoryCriteria() {
    return kCriteria;
}

bool ReadDirectoryChoices(PortalContext& ctx, const DirectoryCriterion& criterion,
                          LDAPDropDownValue& value) {
    LDAPSession* session = nullptr;
    try {
        session = ctx.GetLDAPSession(/*existingOnly=*/false);
    } catch (const char*) {
        return false;  // reported where it was thrown
    }
    if (!value.Search(*session, criterion.base, criterion.filter, criterion.valueField))
        return false;
    if (criterion.mirrored) KeepOwnTrunks(ctx, value);
    return true;
}
