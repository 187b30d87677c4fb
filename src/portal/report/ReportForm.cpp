// The criteria form of a report, "searchForm".
#include <memory>

#include "cgiFramework/LDAPDropDown.h"
#include "cgiFramework/WebForm.h"
#include "common/Html.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportDirectory.h"
#include "portal/report/ReportFormSearch.h"
#include "portal/report/ReportFormTable.h"
#include "portal/report/ReportPeriod.h"

namespace {

constexpr char kSlaSql[] =
    "SELECT '0' as id,'-' as name UNION ALL SELECT id, name FROM CallCentreSLAs where "
    "customerid='%s' order by name ASC";
// Messages have targets of their own.
constexpr char kMessageSlaSql[] =
    "SELECT '0' as id,'-' as name UNION ALL SELECT id, name FROM FrontSLAs where "
    "customerid='%s' order by name ASC";

constexpr char kProgressImage[] = "Images/Norvane/progress1.gif";

constexpr char kNoDirectory[] =
    "The choices cannot be shown, because the directory cannot be read. The report can be "
    "run without them.";

constexpr char kDateFormat[] =
    "size=\"10\" maxlength=\"19\" placeholder=\"yyyy-mm-dd\" inputmode=\"numeric\"";
// The time of day as the server reads it (IsHhmm).
constexpr char kTimeFormat[] =
    "size=\"4\" maxlength=\"4\" inputmode=\"numeric\" pattern=\"([01][0-9]|2[0-3])[0-5][0-9]\" "
    "aria-label=\"%s\" title=\"hhmm (24hr)\"";
constexpr char kSecondsFormat[] = "size=\"4\" maxlength=\"4\" inputmode=\"numeric\"";
constexpr char kPercentFormat[] = "size=\"6\" maxlength=\"6\" inputmode=\"decimal\"";

constexpr char kScripts[] =
    "<script src=\"lib/jquery.min.js\" defer></script>"
    "<script src=\"lib/jquery-ui.min.js\" defer></script>"
    "<script src=\"js/suggest.js\" defer></script>"
    "<script src=\"js/cal.js\" defer></script>"
    "<script src=\"js/select.js\" defer></script>"
    "<script src=\"js/criteria.js\" defer></script>"
    "<script src=\"js/notify.js\" defer></script>\n";

// Adds the rows that the report `offered` has, filled from `current`.
class FormRows {
  public:
    FormRows(PortalContext& ctx, const LumoraReportFilter& offered,
             const LumoraReportFilter& current, ReportFormTable& table)
        : ctx_(ctx), offered_(offered), current_(current), table_(table) {}

    void AddAll();

  private:
    void AddPeriodRow();
    void AddDate(WebItem& line, const char* name, const char* label, const char* day,
                 const UString& value);
    void AddTimeRow();
    void AddTime(WebItem& line, const char* name, const char* label, const UString& value);
    void AddTextRow(const char* name, const char* label, const UString& value, const char* more,
                    const char* hint);
    void AddDirectoryRow(const DirectoryCriterion& criterion);
    void AddCostRow();
    void AddDirectionRow();
    void AddSlaRow();
    void AddCallTypeRow();

    PortalContext& ctx_;
    const LumoraReportFilter& offered_;
    const LumoraReportFilter& current_;
    ReportFormTable& table_;
};

// The link opens a calendar, which the script brings.
void FormRows::AddDate(WebItem& line, const char* name, const char* label, const char* day,
                       const UString& value) {
    WebItem& item = line.Adopt(new WebDiv("class=\"formItem\""));
    AddFormLabel(item, name, label);
    table_.AddText(item, name, value, kDateFormat);
    item.Add(
        new WebValue("<a href=\"#%s\" class=\"selectDate\" role=\"button\" hidden "
                     "aria-label=\"Select Date: %s\">Select Date</a>",
                     name, day));
}

void FormRows::AddPeriodRow() {
    LDAPDropDownValue usual;
    for (const PeriodOption& option : PeriodOptions())
        usual.Add(option.keyword, option.label);
    const LDAPDropDownValue& periods =
        offered_.ddl_daterange != nullptr ? *offered_.ddl_daterange : usual;
    const bool datesGiven = !current_.startDate.IsEmpty() || !current_.endDate.IsEmpty();
    const UString chosen = datesGiven && periods.choices.size() > kCustomPeriodIndex
                               ? UString(periods.choices[kCustomPeriodIndex].value.c_str())
                               : current_.reportPeriod;

    WebItem& cell = table_.AddRow("reportPeriod", "Report Period");
    table_.AddList(cell, "reportPeriod", periods, chosen.c_str(), /*none=*/nullptr);
    WebItem& line = AddFormLine(cell);
    AddDate(line, "startDate", "Start Date: ", "first day", current_.startDate);
    AddDate(line, "endDate", "End Date: ", "last day", current_.endDate);
    table_.AddProblems(cell, "startDate");
    table_.AddProblems(cell, "endDate");
}

void FormRows::AddTime(WebItem& line, const char* name, const char* label, const UString& value) {
    UString more;
    more.Format(kTimeFormat, label);
    table_.AddText(line, name, value, more.c_str());
}

void FormRows::AddTimeRow() {
    WebItem& line = AddFormLine(table_.AddRow("begintime", "In Time Period"));
    AddTime(line, "begintime", "From this time of day", current_.begintime);
    line.Add(new WebValue(" to "));
    AddTime(line, "endtime", "To this time of day", current_.endtime);
    AddFormHint(line, "hhmm (24hr)");
}

void FormRows::AddTextRow(const char* name, const char* label, const UString& value,
                          const char* more, const char* hint) {
    WebItem& cell = table_.AddRow(name, label);
    WebItem& line = AddFormLine(cell);
    table_.AddText(line, name, value, more);
    if (hint != nullptr) AddFormHint(line, hint);
    table_.AddProblems(cell, name);
}

// Without the directory the rest of the form can be used all the same.
void FormRows::AddDirectoryRow(const DirectoryCriterion& criterion) {
    WebItem& cell = table_.AddRow(criterion.field, criterion.label);
    LDAPDropDownValue value;
    if (ReadDirectoryChoices(ctx_, criterion, value)) {
        table_.AddList(cell, criterion.field, value, (current_.*criterion.chosen).c_str(),
                       criterion.all);
    } else {
        cell.Adopt(new WebDiv("class=\"fieldError\" role=\"alert\" id=\"%s\"", criterion.field))
            .Add(new WebValue("%s", kNoDirectory));
    }
    table_.AddProblems(cell, criterion.field);
}

void FormRows::AddCostRow() {
    WebItem& cell = table_.AddRow("markup", "Uplift %");
    WebItem& line = AddFormLine(cell);
    table_.AddText(line, "markup", current_.markup, kPercentFormat);
    AddFormLabel(line, "vatrate", "VAT %");
    table_.AddText(line, "vatrate", current_.vatrate, kPercentFormat);
    table_.AddProblems(cell, "markup");
    table_.AddProblems(cell, "vatrate");
}

void FormRows::AddDirectionRow() {
    LDAPDropDownValue directions;
    for (const char* direction : kDirections)
        directions.Add(direction, direction);
    WebItem& cell = table_.AddRow("inOutFilter", "Inbound/Outbound");
    table_.AddList(cell, "inOutFilter", directions, current_.inOutFilter.c_str(),
                   /*none=*/nullptr);
    table_.AddProblems(cell, "inOutFilter");
}

void FormRows::AddSlaRow() {
    LDAPDropDownValue slas;
    const SqlQuoted customer(ctx_.customerIdString);
    SQLSession db(ctx_.GetSQLSession());
    db.Query(offered_.hasInbox ? SqlText(kMessageSlaSql, customer) : SqlText(kSlaSql, customer));
    while (db.NextRow())
        slas.Add(db.Column(0), db.Column(1));
    WebItem& cell = table_.AddRow("slaID", "Using SLA:");
    table_.AddList(cell, "slaID", slas, current_.slaID.c_str(), /*none=*/nullptr);
    table_.AddProblems(cell, "slaID");
}

// Neither of the two says the same as both, which is what is shown then.
void FormRows::AddCallTypeRow() {
    const bool external = IsTicked(current_.external);
    const bool internal = IsTicked(current_.internal);
    WebItem& cell = table_.AddGroupRow("callType", "Call Type:");
    WebItem& line = cell.Adopt(new WebDiv("class=\"tickRow\""));
    table_.AddCheckBox(line, "external", external || !internal, "External");
    table_.AddCheckBox(line, "internal", internal || !external, "Internal");
}

void FormRows::AddAll() {
    if (offered_.hasReportPeriod) AddPeriodRow();
    if (offered_.hasTimePeriod) AddTimeRow();
    AddSearchRows(ctx_, offered_, current_, table_);
    table_.StartSection();
    if (offered_.hasAccount) AddTextRow("account", "Account Code:", current_.account, "", nullptr);
    if (offered_.hasTimeLimit)
        AddTextRow("timeLimit", "Duration longer than",
                   current_.timeLimit == "-1" ? UString() : current_.timeLimit, kSecondsFormat,
                   "seconds");
    for (const DirectoryCriterion& criterion : DirectoryCriteria())
        if (criterion.offered(offered_)) AddDirectoryRow(criterion);
    if (offered_.hasMarkup) AddCostRow();
    if (offered_.hasInOut) AddDirectionRow();
    if (offered_.hasSLA) AddSlaRow();
    if (offered_.hasInternalExternal) AddCallTypeRow();
    if (offered_.hasDDI)
        AddValueRow(ctx_, table_, "DDI:", "suggestddi", "ddi", current_.ddi.c_str(), "size=\"40\"");
}

// The name is asked for once the box is ticked.
void AddSaveOption(WebForm& form, const LumoraReportFilter& current) {
    form.Add(new WebValue(
        "<div class=\"saveOption\"><label><input type=\"checkbox\" name=\"save\" id=\"save\">"
        "Save these criteria to my quick reports?</label> <span class=\"saveName\">"
        "<label for=\"savedReportDesc\">Name</label> <input type=\"text\" "
        "name=\"savedReportDesc\" id=\"savedReportDesc\" size=\"40\" maxlength=\"100\" "
        "value=\"%s\"></span></div>\n",
        HtmlAttr(current.reportTitle.c_str()).c_str()));
}

void AddButtons(WebForm& form, const LumoraReportFilter& offered) {
    WebDiv& buttons = form.Adopt(new WebDiv("class=\"formButtons\""));
    buttons.Add(new WebField("submit", "submit", HtmlAttr(offered.submitTitle.c_str()).c_str(),
                             "id=\"generate_button\" class=\"CancelButton\""));
    // What is deleted needs no criteria that could be used.
    if (offered.hasDeleteButton)
        buttons.Add(new WebField("submit", "submit", "Delete",
                                 "id=\"delete_button\" class=\"CancelButton\" formnovalidate"));
    WebDiv& progress = form.Adopt(new WebDiv("id=\"notify\" role=\"status\" hidden"));
    progress.Add(new WebValue("<img src=\"%s\" alt=\"\"> Generating the report ", kProgressImage));
    progress.Add(
        new WebField("cancel", "button", "Cancel", "id=\"cancel_button\" class=\"CancelButton\""));
}

}  // namespace

WebItem* LumoraReportFilter::filterForm(PortalContext& ctx, LumoraReportFilter& current,
                                        const std::vector<FilterProblem>& problems) {
    const UString action = HtmlAttr(ctx.GetURL(nullptr));
    UString css("id=\"searchForm\" AUTOCOMPLETE=\"off\"");
    if (mandatoryEntity) css += " data-mandatory-entity";
    if (mandatoryContact) css += " data-mandatory-contact";
    auto form = std::make_unique<WebForm>("searchForm", "post", action.c_str(), css.c_str());
    form->Globals(ctx, "pagename report");
    WebItem& messages = form->Adopt(new WebItem);
    ReportFormTable table(*form, problems);
    FormRows(ctx, *this, current, table).AddAll();
    table.AddOtherProblems(messages);

    if (formExtras != nullptr) {
        formExtras->destroy = false;
        form->Add(formExtras);
    }
    if (saveOption) AddSaveOption(*form, current);
    AddButtons(*form, *this);
    form->Add(new WebValue("%s", kScripts));
    return form.release();
}
