#include "portal/report/LumoraReportFilter.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "cgiFramework/UrlArgument.h"
#include "common/Parse.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportSQLCol.h"

namespace {

using Text = UString LumoraReportFilter::*;
using Filter = LumoraReportFilter;

struct NamedText {
    const char* name;
    Text text;
};

// Where the entity search's text goes, by the kind searched.
constexpr NamedText kSearchTypes[] = {
    {"user", &Filter::userfilter},   {"dept", &Filter::department}, {"group", &Filter::group},
    {"company", &Filter::company},   {"contact", &Filter::contact}, {"agent", &Filter::agentFilter},
    {"queue", &Filter::queueFilter}, {"inbox", &Filter::inboxName},
};
constexpr NamedText kSecondSearchTypes[] = {
    {"user", &Filter::userfilter2}, {"dept", &Filter::department2}, {"group", &Filter::group2}};

// The entity's own arguments, read when there is no search.
constexpr NamedText kEntityArguments[] = {
    {"userfilter", &Filter::userfilter},
    {"department", &Filter::department},
    {"group", &Filter::group},
    {"company", &Filter::company},
    {"contact", &Filter::contact},
    {"agentFilter", &Filter::agentFilter},
    {"queueFilter", &Filter::queueFilter},
    {"inbox", &Filter::inboxName},
    {"inboxid", &Filter::inboxId},
};
constexpr NamedText kSecondEntityArguments[] = {{"userfilter2", &Filter::userfilter2},
                                                {"department2", &Filter::department2},
                                                {"group2", &Filter::group2}};
constexpr NamedText kSecondSearchArguments[] = {{"A_searchtype", &Filter::A_searchtype},
                                                {"A_suggest1", &Filter::A_suggest1}};

// Everything else, read in any case.
constexpr NamedText kArguments[] = {
    {"tag", &Filter::tagFilter},
    {"reportPeriod", &Filter::reportPeriod},
    {"startDate", &Filter::startDate},
    {"endDate", &Filter::endDate},
    {"account", &Filter::account},
    {"var", &Filter::var},
    {"trunkgroup", &Filter::trunkgroup},
    {"trunk", &Filter::trunk},
    {"extra", &Filter::extra},
    {"extra2", &Filter::extra2},
    {"vmailport", &Filter::vmailport},
    {"intExtFilter", &Filter::intExtFilter},
    {"internal", &Filter::internal},
    {"external", &Filter::external},
    {"report", &Filter::report},
    {"reportTitle", &Filter::reportTitle},
    {"groupby", &Filter::groupby},
    {"suggest1", &Filter::suggest1},
    {"begintime", &Filter::begintime},
    {"endtime", &Filter::endtime},
    {"searchtype", &Filter::searchtype},
    {"timeLimit", &Filter::timeLimit},
    {"inOutFilter", &Filter::inOutFilter},
    {"markup", &Filter::markup},
    {"vatrate", &Filter::vatrate},
    {"contact1", &Filter::contact1},
    {"contact2", &Filter::contact2},
    {"contact3", &Filter::contact3},
    {"contact4", &Filter::contact4},
    {"contact5", &Filter::contact5},
    {"contact6", &Filter::contact6},
    {"ddi", &Filter::ddi},
    {"wbDrill", &Filter::wbDrill},
    {"slaID", &Filter::slaID},
    {"globcb1", &Filter::globcb1},
};

// Not all that is read from the session is written there: pages link to a report with these as
// arguments, and a former report's must not come back.
enum Keeping { kSaved, kReadOnly };
struct SessionText {
    const char* name;
    Text text;
    Keeping keeping;
};
constexpr SessionText kSessionTexts[] = {
    {"reportPeriod", &Filter::reportPeriod, kSaved},
    {"startDate", &Filter::startDate, kSaved},
    {"endDate", &Filter::endDate, kSaved},
    {"userfilter", &Filter::userfilter, kSaved},
    {"department", &Filter::department, kSaved},
    {"group", &Filter::group, kReadOnly},
    {"company", &Filter::company, kSaved},
    {"account", &Filter::account, kSaved},
    {"var", &Filter::var, kReadOnly},
    {"trunkgroup", &Filter::trunkgroup, kSaved},
    {"trunk", &Filter::trunk, kReadOnly},
    {"extra", &Filter::extra, kSaved},
    {"vmailport", &Filter::vmailport, kSaved},
    {"intExtFilter", &Filter::intExtFilter, kSaved},
    {"agentFilter", &Filter::agentFilter, kSaved},
    {"queueFilter", &Filter::queueFilter, kSaved},
    {"inboxName", &Filter::inboxName, kReadOnly},
    {"inboxId", &Filter::inboxId, kReadOnly},
    {"internal", &Filter::internal, kSaved},
    {"external", &Filter::external, kSaved},
    {"report", &Filter::report, kReadOnly},
    {"reportTitle", &Filter::reportTitle, kSaved},
    {"groupby", &Filter::groupby, kSaved},
    {"suggest1", &Filter::suggest1, kReadOnly},
    {"begintime", &Filter::begintime, kSaved},
    {"endtime", &Filter::endtime, kSaved},
    {"contact", &Filter::contact, kReadOnly},
    {"searchtype", &Filter::searchtype, kReadOnly},
    {"timeLimit", &Filter::timeLimit, kSaved},
    {"contact1", &Filter::contact1, kSaved},
    {"contact2", &Filter::contact2, kSaved},
    {"contact3", &Filter::contact3, kSaved},
    {"contact4", &Filter::contact4, kSaved},
    {"contact5", &Filter::contact5, kSaved},
    {"contact6", &Filter::contact6, kSaved},
    {"slaID", &Filter::slaID, kSaved},
    {"inOutFilter", &Filter::inOutFilter, kSaved},
    {"markup", &Filter::markup, kSaved},
    {"vatrate", &Filter::vatrate, kSaved},
    {"userfilter2", &Filter::userfilter2, kSaved},
    {"department2", &Filter::department2, kSaved},
    {"group2", &Filter::group2, kSaved},
    {"A_searchtype", &Filter::A_searchtype, kSaved},
    {"A_suggest1", &Filter::A_suggest1, kSaved},
    {"ddi", &Filter::ddi, kReadOnly},
};

constexpr EntityKind kEntityKinds[] = {
    {"user", "Users", &Filter::hasUser, &Filter::userfilter, "userTick"},
    {"dept", "Departments", &Filter::hasDepartment, &Filter::department, "deptTick"},
    {"group", "Reporting Groups", &Filter::hasGroup, &Filter::group, "groupTick"},
    {"contact", "Contacts", &Filter::hasContact, &Filter::contact, "contactTick"},
    {"queue", "Queues", &Filter::hasQueue, &Filter::queueFilter, "queueTick"},
    {"agent", "Agents", &Filter::hasAgent, &Filter::agentFilter, "agentTick"},
    {"company", "Companies", &Filter::hasCompany, &Filter::company, "companyTick"},
    {"inbox", "Inboxes", &Filter::hasInbox, &Filter::inboxName, "inboxTick"},
    {"dept", "Out Depts", &Filter::hasOutDept, &Filter::department, "outDeptTick"},
    // A teammate has no criterion of its own: the search's text is the name.
    {"teammate", "Teammates", &Filter::hasTeammate, &Filter::suggest1, "teammateTick"},
};

constexpr bool Filter::*kSecond = &Filter::hasSecondForField;
constexpr EntityKind kSecondEntityKinds[] = {
    {"user", "Users", kSecond, &Filter::userfilter2, "2userTick"},
    {"dept", "Departments", kSecond, &Filter::department2, "2deptTick"},
    {"group", "Reporting Groups", kSecond, &Filter::group2, "2groupTick"},
};

void AppendPart(UString& header, const char* part) {
    if (*part == '\0') return;
    if (!header.IsEmpty()) header += " / ";
    header += part;
}

}  // namespace

std::span<const EntityKind> EntityKinds() {
    return kEntityKinds;
}

std::span<const EntityKind> SecondEntityKinds() {
    return kSecondEntityKinds;
}

bool IsTicked(const UString& checkBox) {
    return checkBox == "on" || checkBox == "On" || checkBox == "1";
}

void LumoraReportFilter::Init() {
    submitTitle = "Generate Report";
    prefix = "vFilter.";
    ddl_daterange = nullptr;
    formExtras = nullptr;
    hasDeleteButton = saveOption = false;
    hasGroup = hasUser = hasDepartment = hasCompany = hasAccount = hasTrunk = hasTrunkGroup = false;
    hasInternalExternal = hasAgent = hasQueue = hasContact = graphonly = tableonly = false;
    hasTimeLimit = hasSLA = hasInOut = hasSecondForField = hasMarkup = false;
    hasReportPeriod = hasTimePeriod = true;
    hasDDI = hasOutDept = hasState = hasInbox = hasTag = hasTeammate = false;
    allUsers = allTeammates = hasDistGroup = false;
    multiField = "";
    multiField2 = "";
    timeLimit = "-1";
    allowAllRecords = mandatoryEntity = mandatoryContact = false;
}

LumoraReportFilter::LumoraReportFilter(PortalContext& ctx, bool fromSession) {
    Init();
    if (fromSession)
        ReadSession(ctx);
    else
        ReadArguments(ctx);
}

bool LumoraReportFilter::IsInRequest(const PortalContext& ctx) {
    const auto given = [&](std::span<const NamedText> entries) {
        return std::any_of(entries.begin(), entries.end(), [&](const NamedText& entry) {
            return entry.text != &Filter::report && ctx.HasWebArgument(entry.name);
        });
    };
    return given(kEntityArguments) || given(kSecondEntityArguments) ||
           given(kSecondSearchArguments) || given(kArguments);
}

void LumoraReportFilter::ReadSession(PortalContext& ctx) {
    for (const SessionText& entry : kSessionTexts) {
        const UString name = prefix + entry.name;
        // Asking for a variable creates it, and a session with it.
        this->*entry.text =
            ctx.HasWebSessionVar(name.c_str()) ? ctx.GetWebSessionVar(name.c_str())->Text() : "";
    }
}

void LumoraReportFilter::SaveToSession(PortalContext& ctx) const {
    for (const SessionText& entry : kSessionTexts) {
        if (entry.keeping == kReadOnly) continue;
        ctx.SetWebSessionVar((prefix + entry.name).c_str(), (this->*entry.text).c_str());
    }
}

// Needs a link not name the criterion, which is one of this filter's texts?
bool LumoraReportFilter::IsDefault(const UString& text) const {
    if (&text == &report || &text == &reportTitle) return true;
    // An empty uplift or VAT is none, and one that is not named is the customer's.
    if (&text == &markup || &text == &vatrate) return !hasMarkup;
    return text.IsEmpty() || (&text == &timeLimit && text == "-1");
}

std::vector<GivenArgument> LumoraReportFilter::GivenArguments() const {
    std::vector<GivenArgument> given;
    const auto add = [&](std::span<const NamedText> entries) {
        for (const auto& [name, text] : entries)
            if (!IsDefault(this->*text)) given.push_back({name, &(this->*text)});
    };
    if (searchtype.IsEmpty()) add(kEntityArguments);
    if (A_searchtype.IsEmpty())
        add(kSecondEntityArguments);
    else
        add(kSecondSearchArguments);
    add(kArguments);
    return given;
}

void LumoraReportFilter::AppendArguments(UString& url) const {
    std::string arguments;
    for (const auto& [name, text] : GivenArguments())
        AppendUrlArgument(arguments, name, text->c_str());
    url.Append(arguments.data(), arguments.size());
}

void LumoraReportFilter::ReadArguments(PortalContext& ctx) {
    ReadEntity(ctx);
    ReadSecondEntity(ctx);
    for (const NamedText& entry : kArguments)
        this->*entry.text = ctx.ArgumentText(entry.name);
    if (timeLimit.IsEmpty()) timeLimit = "-1";
    graphonly = *ctx.ArgumentText("graphonly") != '\0';
    tableonly = *ctx.ArgumentText("tableonly") != '\0';
}

void LumoraReportFilter::ReadEntity(PortalContext& ctx) {
    const char* kind = ctx.ArgumentText("searchtype");
    if (*kind == '\0') {
        for (const NamedText& entry : kEntityArguments)
            this->*entry.text = ctx.ArgumentText(entry.name);
        return;
    }
    for (const NamedText& entry : kSearchTypes)
        if (strcmp(kind, entry.name) == 0) this->*entry.text = ctx.ArgumentText("suggest1");
}

void LumoraReportFilter::ReadSecondEntity(PortalContext& ctx) {
    A_suggest1 = ctx.ArgumentText("A_suggest1");
    A_searchtype = ctx.ArgumentText("A_searchtype");
    if (A_searchtype.IsEmpty()) {
        for (const NamedText& entry : kSecondEntityArguments)
            this->*entry.text = ctx.ArgumentText(entry.name);
        return;
    }
    for (const NamedText& entry : kSecondSearchTypes)
        if (A_searchtype == entry.name) this->*entry.text = A_suggest1;
}

void LumoraReportFilter::GetHeader(PortalContext& ctx, const LumoraSQLColumnDescription* columns,
                                   UString& header) const {
    header = var;
    if (hasTag) AppendPart(header, tagFilter.c_str());

    const char* field = ctx.ArgumentText("field");
    for (const LumoraSQLColumnDescription* column = columns;
         *field != '\0' && (column->fieldname[0] != '\0' || column->style[0] != '\0'); ++column) {
        if (strcasecmp(column->fieldname, field) != 0) continue;
        AppendPart(header, column->grouptitle);
        AppendPart(header, column->description);
        break;
    }

    if (hasInternalExternal && IsTicked(internal) != IsTicked(external))
        AppendPart(header, IsTicked(internal) ? "Internal" : "External");
}
