#include "portal/report/ReportTrunks.h"

#include <string_view>

#include "cgiFramework/LDAPDropDown.h"
#include "common/ThrowText.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"

namespace {

constexpr char kTrunksSql[] = "SELECT QUOTE(dn) FROM LDAPTrunks WHERE customerid IN('%s')";

constexpr char kCapacityReport[] = "trunkcapacity";
constexpr char kCapacityDrill[] = "trunkcapdrill";

constexpr char kTrunksOfGroup[] = "(&(objectclass=Trunk)(trunkGroup=%s))";
constexpr char kModules[] = "cn=Modules";

ReportEntity OfTrunks(const std::vector<std::string>& quotedNames, const UString& name,
                      bool chosen) {
    const std::string condition = NameListCondition(quotedNames);
    return {condition, condition, name, /*restricted=*/false, chosen};
}

}  // namespace

bool IsTrunkReport(const LumoraReportFilter& filter) {
    return filter.report == kCapacityReport || filter.report == kCapacityDrill;
}

ReportEntity GetTrunkEntity(PortalContext& ctx, const LumoraReportFilter& filter) {
    if (filter.hasTrunk && !filter.trunk.IsEmpty())
        return OfTrunks({SqlText("'%s'", SqlQuoted(filter.trunk)).c_str()}, TrunkName(filter.trunk),
                        /*chosen=*/true);
    if (filter.hasTrunkGroup && !filter.trunkgroup.IsEmpty())
        return OfTrunks(TrunksOfGroup(ctx, filter.trunkgroup), filter.trunkgroup, /*chosen=*/true);
    if (filter.report == kCapacityDrill) return {"<>''", "<>''", "All Active System Trunks"};

    std::vector<std::string> all;
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kTrunksSql, SqlFragment(ctx.GetCustomerSearchGroup())));
    while (db.NextRow())
        all.emplace_back(db.View(0));
    return OfTrunks(all, "All System Trunks", /*chosen=*/false);
}

std::vector<std::string> TrunksOfGroup(PortalContext& ctx, const UString& group) {
    UString name;
    name.SlashHex(group.c_str());
    UString search;
    search.Format(kTrunksOfGroup, name.c_str());
    LDAPSession* session = nullptr;
    try {
        session = ctx.GetLDAPSession(/*existingOnly=*/false);
    } catch (const char*) {
        session = nullptr;  // reported where it was thrown
    }
    LDAPDropDownValue trunks;
    if (session == nullptr || !trunks.Search(*session, kModules, search.c_str(), "dn"))
        ThrowText(
            "The trunks of the group cannot be found, because the directory does not answer. "
            "Please try again, or choose a single trunk.");
    std::vector<std::string> quoted;
    for (const LDAPDropDownChoice& trunk : trunks.choices)
        quoted.emplace_back(SqlText("'%s'", SqlQuoted(trunk.value.c_str())).c_str());
    return quoted;
}

UString TrunkName(const UString& dn) {
    const std::string_view text = dn.c_str();
    const size_t begin = text.find('=') + 1;
    return std::string(text.substr(begin, text.find(',', begin) - begin)).c_str();
}
