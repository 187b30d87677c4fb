#include "portal/report/ReportDefinition.h"

#include "common/CommandLine.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportFormSearch.h"

namespace {

constexpr char kDefinitionSql[] =
    "SELECT name, SQLQuery, opt_group, opt_department, opt_user, opt_interval, reportFile, "
    "globalSQL,  format, opt_account,opt_company,opt_trunkgroup, opt_trunk, opt_int_ext,"
    "multititle,multikeyfield,  multikeyfield2,opt_contact, opt_agent, opt_queue,"
    "opt_time_limit, opt_sla, opt_in_out,  opt_second_for_field,category,opt_ddi,opt_outdept,"
    "opt_inbox,opt_tag FROM CallReport WHERE pagename='%s'";
enum {
    kName,
    kQuery,
    kGroup,
    kDepartment,
    kUser,
    kInterval,
    kReportFile,
    kGlobalSql,
    kFormat,
    kAccount,
    kCompany,
    kTrunkGroup,
    kTrunk,
    kIntExt,
    kMultiTitle,
    kMultiKeyField,
    kMultiKeyField2,
    kContact,
    kAgent,
    kQueue,
    kTimeLimit,
    kSla,
    kInOut,
    kSecondForField,
    kCategory,
    kDdi,
    kOutDept,
    kInbox,
    kTag,
};

constexpr char kHelpSql[] = "SELECT help FROM CallReport WHERE pagename='%s'";

constexpr int kCostCategory = 2;

constexpr struct {
    int column;
    bool LumoraReportFilter::*flag;
} kSwitches[] = {
    {kGroup, &LumoraReportFilter::hasGroup},
    {kDepartment, &LumoraReportFilter::hasDepartment},
    {kUser, &LumoraReportFilter::hasUser},
    {kAccount, &LumoraReportFilter::hasAccount},
    {kCompany, &LumoraReportFilter::hasCompany},
    {kTrunkGroup, &LumoraReportFilter::hasTrunkGroup},
    {kTrunk, &LumoraReportFilter::hasTrunk},
    {kIntExt, &LumoraReportFilter::hasInternalExternal},
    {kContact, &LumoraReportFilter::hasContact},
    {kAgent, &LumoraReportFilter::hasAgent},
    {kQueue, &LumoraReportFilter::hasQueue},
    {kTimeLimit, &LumoraReportFilter::hasTimeLimit},
    {kSla, &LumoraReportFilter::hasSLA},
    {kInOut, &LumoraReportFilter::hasInOut},
    {kSecondForField, &LumoraReportFilter::hasSecondForField},
    {kDdi, &LumoraReportFilter::hasDDI},
    {kOutDept, &LumoraReportFilter::hasOutDept},
    {kInbox, &LumoraReportFilter::hasInbox},
    {kTag, &LumoraReportFilter::hasTag},
};

}  // namespace

bool ReportDefinition::HasFormat(std::string_view word) const {
    const CommandLine words(format.c_str());
    for (int i = 0; i < words.argc(); ++i)
        if (word == words[i]) return true;
    return false;
}

std::unique_ptr<ReportDefinition> ReportDefinition::Load(PortalContext& ctx, const char* pagename,
                                                         LumoraReportFilter& filter) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kDefinitionSql, SqlQuoted(pagename)));
    if (!db.NextRow()) return nullptr;

    auto definition = std::make_unique<ReportDefinition>();
    definition->pagename = pagename;
    definition->arguments = "&report=";
    definition->arguments.AppendSafe(pagename);
    definition->arguments += "&submit=Generate%20Report";
    definition->name = db.Column(kName);
    definition->query = db.Column(kQuery);
    definition->reportFile = db.Column(kReportFile);
    definition->globalSQL = db.Column(kGlobalSql);
    definition->format = db.Column(kFormat);
    definition->multititle = db.Column(kMultiTitle);
    definition->multikeyfield = db.Column(kMultiKeyField);
    definition->multikeyfield2 = db.Column(kMultiKeyField2);
    definition->category = db.IntColumn(kCategory);
    definition->hideTimeOfDay = db.IntColumn(kInterval) != 0;

    for (const auto& [column, flag] : kSwitches)
        filter.*flag = db.IntColumn(column) != 0;
    filter.hasTimePeriod = !definition->hideTimeOfDay;
    filter.mandatoryContact = filter.hasContact;
    filter.hasMarkup = definition->category == kCostCategory;
    filter.mandatoryEntity = definition->HasFormat("mandatory");

    // "Allow Global" counts only where the customer's form offers it.
    if (IsTicked(filter.globcb1) && !IsGlobalOffered(ctx)) filter.globcb1 = "";
    if (IsTicked(filter.globcb1) && !definition->globalSQL.IsEmpty())
        definition->query = definition->globalSQL;
    db.Query(SqlText(kHelpSql, SqlQuoted(pagename)));
    if (db.NextRow()) definition->help = db.Column(0);
    return definition;
}

UString RunUrl(PortalContext& ctx, const ReportDefinition& definition,
               const LumoraReportFilter& filter) {
    UString url = ctx.GetURL("pagename=%s", definition.page.c_str());
    url += definition.arguments;
    filter.AppendArguments(url);
    return url;
}
