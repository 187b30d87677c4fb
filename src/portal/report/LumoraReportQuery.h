// LumoraReportQuery.h: fills a report's SQL template with the criteria of one run.
#pragma once

#include <string>

#include "portal/report/LumoraReportFilter.h"

class PortalContext;
struct PeriodSql;
struct ReportWeek;

// Builds everything in its constructor. The template's square-bracketed placeholders are replaced
// in one pass, so what stands in a criterion is never taken for a placeholder.
class LumoraReportQuery {
  public:
    // Reads what it needs on its own cursors of the context's connection. The last three texts are
    // the selected agent state: its display name, the state's and the not-available reason's name.
    // Of the request's arguments it reads "wbid" (the id of a wallboard, whose day then is today)
    // and "wbStart" (a time stamp since which a wallboard counts); it sets "subq_entity".
    // Throws the server's message, the first of the filter's problems, or a text that names a
    // placeholder that does not exist. A selection that the caller may not see is no failure: it
    // gives a query without rows and a name that says so.
    LumoraReportQuery(PortalContext& ctx, const char* templateText,
                      const LumoraReportFilter& filter, const char* agentDispName = "",
                      const char* agentStateName = "", const char* agentNAName = "");

    // The finished statement, for SqlText::FromTemplate.
    const std::string& GetQuery() const { return query; }
    // Who or what the report is for, as plain text; empty when the template does not ask.
    const UString& GetEntityName() const { return entityname; }
    const UString& GetEscapedEntityName() const { return escEntityName; }
    // The condition that follows a name column, for instance ='Sales' or IN ('a','b').
    const std::string& GetEntityFilter() const { return entityFilter; }
    const UString& GetDateTitle() const { return datetitle; }
    const UString& GetTimeTitle() const { return timeTitle; }
    // Which of the calls count (ReportCallCriteria.h), as plain text; empty: all.
    const UString& GetCallTitle() const { return callTitle; }
    // The criteria with what was found out: the dates of the period, the week, the SLA.
    const LumoraReportFilter& GetFilter() const { return reportFilter; }

  private:
    std::string query;
    LumoraReportFilter reportFilter;
    int groupId = 0;
    std::string datefilter;
    UString datetitle;
    UString entityname;
    UString escEntityName;
    std::string entityFilter;
    std::string entityFilter2;
    std::string groupJoinFilter;
    std::string intExtFilter;
    UString timeFilter;
    UString timeTitle;
    std::string startDate;  // SQL expressions
    std::string endDate;
    UString startTime;  // hh:mm:ss
    UString endTime;
    UString shiftSeconds;
    UString agentState[3];
    std::string subqEntity;
    std::string callFilter;
    UString callTitle;

    bool Wants(const char* placeholder) const;
    void getGroupId(PortalContext& ctx);
    void buildGroupJoinFilter(PortalContext& ctx);
    void buildIntExt(PortalContext& ctx);
    void buildEntity(PortalContext& ctx);
    void buildTime();
    void buildDate(PortalContext& ctx);
    PeriodSql ChoosePeriod(PortalContext& ctx);
    static ReportWeek ReadWeek(PortalContext& ctx);
    void buildShift(PortalContext& ctx);
    void buildSLA(PortalContext& ctx);
    void buildState(const char* dispName, const char* stateName, const char* naName);
    void Fill(PortalContext& ctx);
};
