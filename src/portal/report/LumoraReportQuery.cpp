#include "portal/report/LumoraReportQuery.h"

#include <strings.h>
#include <cstring>

#include "common/Parse.h"
#include "common/SqlText.h"
#include "common/ThrowText.h"
#include "portal/context/PortalContext.h"
#include "portal/report/ReportCallCriteria.h"
#include "portal/report/ReportEntity.h"
#include "portal/report/ReportGroup.h"
#include "portal/report/ReportPeriod.h"
#include "portal/report/ReportPlaceholders.h"
#include "portal/report/ReportTrunks.h"

namespace {

constexpr char kInternalOnly[] = " AND CallLog.A_Trunk='' AND CallLog.B_Trunk='' ";
constexpr char kExternalOnly[] = " AND (CallLog.A_Trunk!='' OR CallLog.B_Trunk!='') ";
constexpr char kInternalTrunksSql[] =
    "SELECT QUOTE(dn) FROM LDAPTrunks WHERE customerId='%s' AND description LIKE '%%internal%%'";
// The caller's own customer comes last, so that it overrides others of its search group.
constexpr char kWeekSql[] =
    "SELECT AttribName, AttribValue FROM CustomerAttribute WHERE CustomerId IN ('%s') "
    "AND AttribName IN ('startday','weeklength') ORDER BY CustomerId='%s', AttribName";
enum { kWeekName, kWeekValue };
constexpr char kShiftSql[] =
    "SELECT AttribValue * 3600 * (1+DATEDIFF('%s','%s')) FROM CustomerAttribute "
    "WHERE AttribName='shiftlength' AND CustomerId IN ('%s') ORDER BY CustomerId='%s'";
// An SLA that is not chosen, or not the customer's, has thresholds that no call reaches.
constexpr char kSlaSql[] =
    "SELECT * FROM (  SELECT 9999999 AS answerSLA, 9999999 AS handleSLA  "
    "UNION SELECT answerSLA, handleSLA FROM CallCentreSLAs  WHERE customerid IN('%s') AND id=%s) "
    "AS t ORDER BY answerSLA LIMIT 1";
enum { kAnswerSla, kHandleSla };
constexpr char kResponseSlaSql[] =
    "SELECT responseSLA FROM FrontSLAs WHERE customerid IN('%s') AND id=%s";
constexpr char kNoSla[] = "9999999";
// The day begins at that time in UTC: yesterday's while today's is still to come. In the time zone
// of the session, as NOW() is.
constexpr char kWallboardDaySql[] =
    "SELECT CONVERT_TZ(start - INTERVAL (start > UTC_TIMESTAMP()) DAY, '+00:00', "
    "@@session.time_zone) FROM (SELECT STR_TO_DATE(CONCAT(UTC_DATE(),' ',startTime),"
    "'%%Y-%%m-%%d %%H%%i') AS start FROM NewWallboardPage WHERE id=%s AND customer_id=%i "
    "AND startTime REGEXP '^([01][0-9]|2[0-3])[0-5][0-9]$') AS day";

// Calls have members where the caller, the party dialled, the one who answered or the department
// booked is one.
constexpr char kGroupJoin[] =
    " INNER JOIN (SELECT DISTINCT name FROM (%s) AS member) AS GroupMember ON GroupMember.name "
    "IN (CallLog.A_Name,CallLog.B_Name,CallLog.B_RemoteName,CallLog.origCostCentre) ";
constexpr char kNobody[] = "SELECT '' AS name FROM DUAL WHERE FALSE";

constexpr char kSharedInboxTable[] = "FrontMessage";

std::string Escaped(const UString& text) {
    return std::string(SqlQuoted(text).text());
}

// The text, or `def` when nothing was given.
std::string Given(const UString& text, const char* def) {
    return text.IsEmpty() ? def : text.c_str();
}

// The table of a report class of our own. It stands in the statement as it is.
const char* TableName(const UString& name) {
    const char* text = name.IsEmpty() ? kSharedInboxTable : name.c_str();
    constexpr char kNameCharacters[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
    if (text[strspn(text, kNameCharacters)] != '\0') ThrowText("\"%s\" is no table.", text);
    return text;
}

std::string Truth(bool value) {
    return value ? "TRUE" : "FALSE";
}

// Whom a report of one account code is for.
UString WithAccount(const ReportEntity& entity, const UString& account) {
    UString title;
    if (entity.chosen || entity.restricted)
        title.Format("%s, Account code: %s", entity.name.c_str(), account.c_str());
    else
        title.Format("All where Account code: %s", account.c_str());
    return title;
}

}  // namespace

LumoraReportQuery::LumoraReportQuery(PortalContext& ctx, const char* templateText,
                                     const LumoraReportFilter& filter, const char* agentDispName,
                                     const char* agentStateName, const char* agentNAName)
    : query(templateText), reportFilter(filter) {
    const auto problems = reportFilter.Check();
    if (!problems.empty()) ThrowText("%s", problems.front().message.c_str());

    if (Wants("[groupid]")) getGroupId(ctx);
    if (!reportFilter.group.IsEmpty() && Wants("[groupjoin]")) buildGroupJoinFilter(ctx);
    buildIntExt(ctx);
    buildEntity(ctx);
    buildTime();
    buildDate(ctx);
    const CallCriteria calls = GetCallCriteria(ctx, reportFilter, query);
    callFilter = calls.condition;
    callTitle = calls.title;
    if (Wants("[sla")) buildSLA(ctx);
    buildState(agentDispName, agentStateName, agentNAName);
    Fill(ctx);
}

bool LumoraReportQuery::Wants(const char* placeholder) const {
    return query.find(placeholder) != std::string::npos;
}

void LumoraReportQuery::buildIntExt(PortalContext& ctx) {
    const bool internalOnly = IsTicked(reportFilter.internal);
    if (!reportFilter.hasInternalExternal || internalOnly == IsTicked(reportFilter.external))
        return;
    if (!Wants("[int_ext]")) {
        intExtFilter = internalOnly ? kInternalOnly : kExternalOnly;
        return;
    }
    std::string trunks = "(''";  // a call without a trunk is internal
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kInternalTrunksSql, SqlQuoted(ctx.customerIdString)));
    while (db.NextRow())
        trunks.append(",").append(db.View(0));
    trunks += ")";
    intExtFilter = internalOnly ? " AND CallLog.A_Trunk IN " + trunks + " AND CallLog.B_Trunk IN " +
                                      trunks + " "
                                : " AND (CallLog.A_Trunk NOT IN " + trunks +
                                      " OR CallLog.B_Trunk NOT IN " + trunks + ") ";
}

void LumoraReportQuery::getGroupId(PortalContext& ctx) {
    groupId = GetReportingGroupId(ctx, reportFilter.group);
}

void LumoraReportQuery::buildGroupJoinFilter(PortalContext& ctx) {
    const GroupMembers members =
        GetGroupMembers(ctx, reportFilter.group, reportFilter.allowAllRecords);
    groupJoinFilter =
        SqlText(kGroupJoin, SqlFragment(members.statement.empty() ? kNobody : members.statement))
            .c_str();
}

// The conditions and names that the template asks for; their lists may be long.
void LumoraReportQuery::buildEntity(PortalContext& ctx) {
    const bool hasInbox = !reportFilter.inboxName.IsEmpty() || !reportFilter.inboxId.IsEmpty();
    ReportEntity entity;
    reportFilter.allUsers = false;
    if (Wants("[entity]") || Wants("[entityName]") || Wants("[subq_entity]") ||
        Wants("[allusers]") || IsTrunkReport(reportFilter) || hasInbox) {
        entity = GetChosenEntity(ctx, reportFilter);
        // A template may leave out its conditions on people's names only for who may see all. Where
        // the entity is a trunk, [entity2] is whom the caller may see.
        const bool trunks = Wants("[allusers]") && IsTrunkReport(reportFilter);
        const ReportEntity people = trunks ? GetSecondEntity(ctx, reportFilter) : entity;
        reportFilter.allUsers = !people.chosen && !people.restricted;
    }
    entityFilter = entity.condition;
    subqEntity = entity.subquery;
    const bool byAccount = reportFilter.hasAccount && !reportFilter.account.IsEmpty();
    entityname = byAccount ? WithAccount(entity, reportFilter.account) : entity.name;
    // Never the browser's own text.
    ctx.SetWebArgument("subq_entity", subqEntity.c_str());
    escEntityName = Escaped(entityname).c_str();
    if (Wants("[entity2]")) entityFilter2 = GetSecondEntity(ctx, reportFilter).condition;
    if (Wants("[allteammates]"))
        reportFilter.allTeammates = reportFilter.allowAllRecords || SeesAllTeammates(ctx);
}

void LumoraReportQuery::buildTime() {
    startTime = hhmmToTime(reportFilter.begintime.c_str(), "00:00") + ":00";
    endTime = hhmmToTime(reportFilter.endtime.c_str(), "23:59") + ":59";
    timeFilter.Format(" BETWEEN '%s' AND '%s' ", startTime.c_str(), endTime.c_str());
    timeTitle.Format(" between '%s' AND '%s' ", startTime.c_str(), endTime.c_str());
}

void LumoraReportQuery::buildDate(PortalContext& ctx) {
    const PeriodSql period = ChoosePeriod(ctx);
    startDate = period.start;
    endDate = period.exact ? period.end : period.End();
    datefilter = period.Condition();

    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText("SELECT %s, %s", SqlFragment(period.start), SqlFragment(period.end)));
    db.NextRow();
    reportFilter.startDate = db.Column(0);
    reportFilter.endDate = db.Column(1);
    datetitle = period.Title(db.Column(0), db.Column(1));
    if (Wants("[shiftSeconds]")) buildShift(ctx);
}

PeriodSql LumoraReportQuery::ChoosePeriod(PortalContext& ctx) {
    const bool explicitDates = !reportFilter.startDate.IsEmpty();
    const char* keyword = reportFilter.reportPeriod.c_str();
    ReportWeek week;
    if ((!explicitDates && PeriodNeedsWeek(keyword)) || Wants("[startday]") || Wants("[weeklen]"))
        week = ReadWeek(ctx);
    reportFilter.weekStartDay = std::to_string(week.firstDay).c_str();
    reportFilter.weekLength = std::to_string(week.length).c_str();

    if (explicitDates)
        return ExplicitPeriod(reportFilter.startDate.c_str(), reportFilter.endDate.c_str(),
                              !reportFilter.wbDrill.IsEmpty());
    if (reportFilter.reportPeriod == "today") {
        const char* since = ctx.ArgumentText("wbStart");
        if (*since != '\0' && !IsTimestamp(since))
            ThrowText("The start of the wallboard's count must be a date and a time.");
        if (*since != '\0') reportFilter.wbTime = SqlText("> '%s'", SqlQuoted(since)).c_str();

        const char* wallboard = ctx.ArgumentText("wbid");
        SQLSession db(ctx.GetSQLSession());
        if (IsDigits(wallboard, 1, 9)) {
            db.Query(SqlText(kWallboardDaySql, SqlFragment(wallboard), ctx.customerId));
            if (db.NextRow() && !db.IsNull(0)) {
                reportFilter.wbDrill = "y";
                return WallboardPeriod(db.Column(0));
            }
        }
    }
    return KeywordPeriod(keyword, week);
}

ReportWeek LumoraReportQuery::ReadWeek(PortalContext& ctx) {
    ReportWeek week;
    const SqlFragment group(ctx.GetCustomerSearchGroup());
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kWeekSql, group, SqlQuoted(ctx.customerIdString)));
    while (db.NextRow()) {
        if (strcasecmp(db.Column(kWeekName), "startday") == 0)
            week.SetStartDay(db.Column(kWeekValue));
        else
            week.SetLength(db.Column(kWeekValue));
    }
    return week;
}

void LumoraReportQuery::buildShift(PortalContext& ctx) {
    shiftSeconds = "0";
    const SqlFragment group(ctx.GetCustomerSearchGroup());
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kShiftSql, SqlQuoted(reportFilter.endDate), SqlQuoted(reportFilter.startDate),
                     group, SqlQuoted(ctx.customerIdString)));
    while (db.NextRow())
        if (!db.IsNull(0)) shiftSeconds = db.Column(0);
}

void LumoraReportQuery::buildSLA(PortalContext& ctx) {
    const SqlFragment group(ctx.GetCustomerSearchGroup());
    const SqlFragment id(Given(reportFilter.slaID, "0"));  // digits, as the check has seen
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kSlaSql, group, id));
    db.NextRow();
    reportFilter.slaAnswer = db.Column(kAnswerSla);
    reportFilter.slaHandle = db.Column(kHandleSla);
    db.Query(SqlText(kResponseSlaSql, group, id));
    reportFilter.slaResponse = db.NextRow() ? db.Column(0) : kNoSla;
}

void LumoraReportQuery::buildState(const char* dispName, const char* stateName,
                                   const char* naName) {
    agentState[0] = dispName;
    agentState[1] = stateName;
    agentState[2] = naName;
}

void LumoraReportQuery::Fill(PortalContext& ctx) {
    const LumoraReportFilter& f = reportFilter;
    // Free text is escaped for the quotes that the template puts around it; numbers, dates and
    // directions have passed the filter's check.
    std::string dateCondition = " " + datefilter + " ";
    if (!Wants("[int_ext]")) dateCondition += intExtFilter;
    dateCondition += callFilter;
    query = FillPlaceholders(query, {{"inOutFilter", f.inOutFilter.c_str()},
                                     {"date", std::move(dateCondition)},
                                     {"startDate", " " + startDate + " "},
                                     {"endDate", " " + endDate + " "},
                                     {"customerSearchGroup", ctx.GetCustomerSearchGroup()},
                                     {"entity", entityFilter},
                                     {"subq_entity", subqEntity},
                                     {"entity2", entityFilter2},
                                     {"entityName", escEntityName.c_str()},
                                     {"allusers", Truth(f.allUsers)},
                                     {"allteammates", Truth(f.allTeammates)},
                                     {"groupjoin", groupJoinFilter},
                                     {"groupid", std::to_string(groupId)},
                                     {"int_ext", intExtFilter},
                                     {"shiftSeconds", shiftSeconds.c_str()},
                                     {"var", Escaped(f.var)},
                                     {"extra", Escaped(f.extra)},
                                     {"extra2", Escaped(f.extra2)},
                                     {"time", timeFilter.c_str()},
                                     {"timeLimit", Given(f.timeLimit, "-1")},
                                     {"contactID", ctx.contactIdString.c_str()},
                                     {"startTime", startTime.c_str()},
                                     {"endTime", endTime.c_str()},
                                     {"wbTime", f.wbTime.c_str()},
                                     {"slaID", Given(f.slaID, "0")},
                                     {"slaAnswer", f.slaAnswer.c_str()},
                                     {"slaHandle", f.slaHandle.c_str()},
                                     {"slaResponse", f.slaResponse.c_str()},
                                     {"startday", f.weekStartDay.c_str()},
                                     {"weeklen", f.weekLength.c_str()},
                                     {"ddi", Escaped(f.ddi)},
                                     {"fronttable", TableName(f.frontTable)},
                                     {"tag", Escaped(f.tagFilter)},
                                     {"agDispName", Escaped(agentState[0])},
                                     {"agStateName", Escaped(agentState[1])},
                                     {"NAName", Escaped(agentState[2])},
                                     {"vatrate", Given(f.vatrate, "0")},
                                     {"markup", Given(f.markup, "0")}});
}
