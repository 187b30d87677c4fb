// LumoraReportFilter.h: the criteria of one run of a call report.
#pragma once

#include <span>
#include <vector>

#include "common/UStringX.h"

class LDAPDropDownValue;
class PortalContext;
class WebItem;
struct LumoraSQLColumnDescription;

// A criterion that cannot be used, and what to tell the user. `field` is the form field's name.
struct FilterProblem {
    const char* field;
    UString message;
};

// A criterion under its argument's name.
struct GivenArgument {
    const char* name;
    const UString* text;
};

// What a report is asked for, as the browser sent it: every text is raw, and an empty one was not
// given. LumoraReportQuery turns the criteria into SQL. The flags are the report's own, set by its
// definition; reading the criteria leaves them alone, apart from graphonly and tableonly.
class LumoraReportFilter {
  public:
    UString submitTitle;               // caption of the submit button
    UString prefix;                    // of the session variables' names
    LDAPDropDownValue* ddl_daterange;  // not owned; null: the form's own list of periods
    WebItem* formExtras;               // not owned; shown below the form's rows
    bool hasDeleteButton;
    bool saveOption;

    // Which rows the form has.
    bool hasGroup;
    bool hasUser;
    bool hasDepartment;
    bool hasCompany;
    bool hasAccount;
    bool hasTrunk;
    bool hasTrunkGroup;
    bool hasInternalExternal;
    bool hasAgent;
    bool hasQueue;
    bool hasContact;
    bool graphonly;
    bool tableonly;
    bool hasTimeLimit;
    bool hasSLA;
    bool hasInOut;
    bool hasSecondForField;
    bool hasMarkup;
    bool hasReportPeriod;  // on by default
    bool hasTimePeriod;    // on by default
    bool hasDDI;
    bool hasOutDept;
    bool hasState;
    bool hasInbox;
    bool hasTag;
    bool hasTeammate;
    bool allUsers;
    bool allTeammates;
    bool hasDistGroup;

    UString reportPeriod;  // keyword (ReportPeriod.h); an unknown one means today
    UString startDate;     // yyyy-MM-dd; given dates win over the keyword
    UString endDate;
    UString userfilter;
    UString department;
    UString group;
    UString inboxName;
    UString inboxId;
    UString tagFilter;
    UString userfilter2;
    UString department2;
    UString group2;
    UString A_searchtype;
    UString A_suggest1;
    UString company;
    UString account;
    UString var;
    UString trunkgroup;
    UString trunk;
    UString extra;
    UString extra2;
    UString vmailport;
    UString intExtFilter;
    UString agentFilter;
    UString queueFilter;
    UString internal;  // check boxes: "on" when ticked
    UString external;
    UString report;  // page name
    UString reportTitle;
    UString groupby;
    UString multiField;
    UString multiField2;
    UString suggest1;   // text of the entity search
    UString begintime;  // hhmm; anything else counts as not given
    UString endtime;
    UString contact;
    UString searchtype;  // kind of the entity search
    UString timeLimit;   // seconds; "-1": none
    UString inOutFilter;
    UString inOutFilterText;
    UString markup;  // per cent
    UString vatrate;
    UString weekStartDay;  // 1 (Sunday) to 7, filled by the query
    UString weekLength;    // days
    UString wbTime;
    UString wbDrill;  // set: the dates are exact time stamps
    UString contact1;
    UString contact2;
    UString contact3;
    UString contact4;
    UString contact5;
    UString contact6;
    UString slaID;
    UString slaAnswer;  // thresholds in seconds, filled by the query
    UString slaHandle;
    UString slaResponse;
    UString ddi;
    UString agentState;
    UString frontTable;
    UString distGroup;

    bool allowAllRecords;  // the caller's call-log permissions do not restrict the report

    bool mandatoryEntity;   // the report runs for one entity, or, where globcb1 is ticked, for all
    bool mandatoryContact;  // the report runs for at least one contact
    UString globcb1;        // check box: for all, whatever the entity search holds

    LumoraReportFilter() { Init(); }
    // Reads the criteria from the session, or else from the request's arguments. In the arguments a
    // given "searchtype" decides the entity; those of the single kinds are then ignored.
    LumoraReportFilter(PortalContext& ctx, bool fromSession);
    // Does the request carry criteria of its own, so that those of the session do not count?
    static bool IsInRequest(const PortalContext& ctx);
    // Sets the defaults.
    void Init();
    // Writes the criteria that a later page of the same report needs: fewer than are read.
    void SaveToSession(PortalContext& ctx) const;
    // Appends "&name=value", ready for a URL, for every criterion that is given, so that a link
    // finds the same calls again. The report, its title and how its result is shown are none.
    void AppendArguments(UString& url) const;

    // What stands against running the report: dates that are none, an end before the start, texts
    // where numbers belong, choices that the form does not offer, an entity or a contact that is
    // missing. Empty when it can run.
    std::vector<FilterProblem> Check() const;

    // The criteria form with the rows that this filter's flags switch on, filled from `current`;
    // each problem stands beside its field. The caller owns the result.
    WebItem* filterForm(PortalContext& ctx, LumoraReportFilter& current,
                        const std::vector<FilterProblem>& problems = {});

    // Puts one line into `header` that names the selection, as plain text. `columns` ends with an
    // entry of empty field name and style.
    void GetHeader(PortalContext& ctx, const LumoraSQLColumnDescription* columns,
                   UString& header) const;

    void SetSaveOption(bool offer) { saveOption = offer; }
    void SetHasDeleteButton(bool offer) { hasDeleteButton = offer; }
    void SetDateDDL(LDAPDropDownValue* list) { ddl_daterange = list; }
    // The item stays the caller's and must outlive the form.
    void AddFormExtras(WebItem* extras) { formExtras = extras; }
    void SetSubmitTitle(UString title) { submitTitle = title; }

  private:
    void ReadSession(PortalContext& ctx);
    void ReadArguments(PortalContext& ctx);
    void ReadEntity(PortalContext& ctx);
    void ReadSecondEntity(PortalContext& ctx);
    bool IsDefault(const UString& text) const;
    void CheckDates(std::vector<FilterProblem>& problems) const;
    void CheckKinds(std::vector<FilterProblem>& problems) const;
    void CheckEntity(std::vector<FilterProblem>& problems) const;
    void CheckLengths(std::vector<FilterProblem>& problems) const;
    bool HasEntity() const;
    bool HasContactNumber() const;
    std::vector<GivenArgument> GivenArguments() const;
};

// A kind of entity that a search of the form offers, by the report's flag of it.
struct EntityKind {
    const char* searchtype;
    const char* label;
    bool LumoraReportFilter::*offered;
    UString LumoraReportFilter::*field;
    const char* tick;  // the box that says whether its names are offered while somebody types
};
// Of the search "For:". The departments that calls went out from are departments as well, so the
// search type "dept" stands twice.
std::span<const EntityKind> EntityKinds();
// Of the second search, "Show:".
std::span<const EntityKind> SecondEntityKinds();

// The choices of `inOutFilter`.
constexpr const char* kDirections[] = {"Both", "Inbound", "Outbound"};

// Is a check box's text that of a ticked one?
bool IsTicked(const UString& checkBox);
