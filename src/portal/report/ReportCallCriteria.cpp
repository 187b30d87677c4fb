#include "portal/report/ReportCallCriteria.h"

#include <algorithm>
#include <vector>

#include "common/Parse.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportEntity.h"
#include "portal/report/ReportPlaceholders.h"
#include "portal/report/ReportTrunks.h"

namespace {

using Filter = LumoraReportFilter;

constexpr char kAccountSql[] = "%s AND accountCode IN ('%s')";
constexpr char kTrunksSql[] = " AND (A_Trunk %s OR B_Trunk %s)";
constexpr char kDdiSql[] = " AND targetNumber='%s'";
constexpr char kLongerSql[] = " AND callduration > %lld";
constexpr char kInboundSql[] = " AND A_Trunk<>'' AND A_Out=0";
constexpr char kOutboundSql[] = " AND B_Trunk<>'' AND B_Out=1";
constexpr char kCallerSql[] = "AND (A_Name [entity] OR a_num [entity] or a_shortnum [entity])";
constexpr char kDialledSql[] =
    "AND (B_Name [entity] OR B_RemoteName [entity] OR B_Num [entity] or B_Shortnum [entity])";

constexpr UString Filter::*kContacts[] = {&Filter::contact,  &Filter::contact1, &Filter::contact2,
                                          &Filter::contact3, &Filter::contact4, &Filter::contact5,
                                          &Filter::contact6};

std::string Quoted(const UString& text) {
    return SqlText("'%s'", SqlQuoted(text)).c_str();
}

class Builder {
  public:
    Builder(PortalContext& ctx, const Filter& filter, std::string_view templateText)
        : ctx_(ctx), filter_(filter), template_(templateText) {}

    CallCriteria Build() {
        AddTrunks();
        AddContacts();
        if (filter_.hasDDI && !filter_.ddi.IsEmpty() && !HasOwnPlace("[ddi]"))
            Add(SqlText(kDdiSql, SqlQuoted(filter_.ddi)), "DDI: ", filter_.ddi);
        AddDirection();
        AddDuration();
        AddAccount();
        if (!criteria_.condition.empty()) criteria_.condition += ' ';
        return criteria_;
    }

  private:
    bool HasOwnPlace(const char* placeholder) const {
        return template_.find(placeholder) != std::string_view::npos;
    }

    void Add(const SqlText& condition, const char* label, const UString& value) {
        criteria_.condition += condition.c_str();
        AddTitle(label, value);
    }
    void AddTitle(const char* label, const UString& value) {
        if (!criteria_.title.IsEmpty()) criteria_.title += " / ";
        criteria_.title += label;
        criteria_.title += value;
    }

    void AddTrunks() {
        if (filter_.hasTrunk && !filter_.trunk.IsEmpty()) {
            const SqlFragment only("=" + Quoted(filter_.trunk));
            Add(SqlText(kTrunksSql, only, only), "Trunk: ", TrunkName(filter_.trunk));
        }
        if (filter_.hasTrunkGroup && !filter_.trunkgroup.IsEmpty()) {
            const SqlFragment any(NameListCondition(TrunksOfGroup(ctx_, filter_.trunkgroup)));
            Add(SqlText(kTrunksSql, any, any), "Trunk Group: ", filter_.trunkgroup);
        }
    }

    // A contact is a number or a name. In a report of one direction it is the other side; else it
    // is either.
    void AddContacts() {
        if (!filter_.hasContact) return;
        std::vector<std::string> quoted;
        UString names;
        for (const auto contact : kContacts) {
            const UString& text = filter_.*contact;
            if (text.IsEmpty()) continue;
            quoted.push_back(Quoted(text));
            if (!names.IsEmpty()) names += ", ";
            names += text;
        }
        if (quoted.empty()) return;
        const std::vector<ReportPlaceholder> values = {{"entity", NameListCondition(quoted)}};
        const std::string caller = FillPlaceholders(kCallerSql, values);
        const std::string dialled = FillPlaceholders(kDialledSql, values);
        constexpr size_t kAnd = 4;  // "AND "
        criteria_.condition +=
            filter_.inOutFilter == "Inbound" ? " " + caller
            : filter_.inOutFilter == "Outbound"
                ? " " + dialled
                : " AND (" + caller.substr(kAnd) + " OR " + dialled.substr(kAnd) + ")";
        AddTitle("Contact: ", names);
    }

    void AddDirection() {
        if (!filter_.hasInOut || HasOwnPlace("[inOutFilter]")) return;
        if (filter_.inOutFilter == "Inbound") Add(SqlText(kInboundSql), "", "Inbound");
        if (filter_.inOutFilter == "Outbound") Add(SqlText(kOutboundSql), "", "Outbound");
    }

    void AddDuration() {
        int64_t seconds = -1;
        if (!filter_.hasTimeLimit || HasOwnPlace("[timeLimit]")) return;
        if (!ParseInt64(filter_.timeLimit.c_str(), seconds) || seconds < 0) return;
        UString title;
        title.Format("%s seconds", filter_.timeLimit.c_str());
        Add(SqlText(kLongerSql, static_cast<long long>(seconds)), "Longer than ", title);
    }

    // Its title is the entity's name or a part of it.
    void AddAccount() {
        if (!filter_.hasAccount || filter_.account.IsEmpty()) return;
        criteria_.condition =
            SqlText(kAccountSql, SqlFragment(criteria_.condition), SqlQuoted(filter_.account))
                .c_str();
    }

    PortalContext& ctx_;
    const Filter& filter_;
    std::string_view template_;
    CallCriteria criteria_;
};

}  // namespace

CallCriteria GetCallCriteria(PortalContext& ctx, const LumoraReportFilter& filter,
                             std::string_view templateText) {
    return Builder(ctx, filter, templateText).Build();
}
