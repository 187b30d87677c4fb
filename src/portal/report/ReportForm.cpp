// The criteria form of a report, "searchForm".
#include <cstring>

#include "cgiFramework/LDAPDropDown.h"
#include "cgiFramework/WebForm.h"
#include "common/Html.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportDirectory.h"
#include "portal/report/ReportPeriod.h"

namespace {

constexpr char kProgressImage[] = "Images/Norvane/progress1.gif";
constexpr char kSuggestEntities[] = "pagename=autorespond&logging=on&format=json";
constexpr char kSuggestValues[] = "pagename=autorespond2&searchtype=%s";

// The boxes that say for which kinds of entities names are offered.
constexpr struct {
    const char* searchtype;
    const char* tick;
    const char* label;
} kTicks[] = {{"user", "userTick", "Users"},
              {"dept", "deptTick", "Departments"},
              {"group", "groupTick", "Reporting Groups"},
              {"contact", "contactTick", "Contacts"},
              {"queue", "queueTick", "Queues"},
              {"agent", "agentTick", "Agents"},
              {"company", "companyTick", "Companies"},
              {"inbox", "inboxTick", "Inboxes"}};

constexpr char kNoDirectory[] =
    "The choices cannot be shown, because the directory cannot be read. The report can be "
    "run without them.";

// The time of day as the server reads it (IsHhmm).
constexpr char kHhmmPattern[] = "([01][0-9]|2[0-3])[0-5][0-9]";

class FormBuilder {
  public:
    FormBuilder(PortalContext& ctx, const LumoraReportFilter& offered,
                const LumoraReportFilter& current, const std::vector<FilterProblem>& problems)
        : ctx_(ctx),
          offered_(offered),
          current_(current),
          problems_(problems),
          shown_(problems.size()) {}

    WebItem* Build();

  private:
    WebCell& AddRow(const char* field, const char* label);
    void AddPeriodRows();
    void AddTimeRow();
    void AddEntityRow();
    void AddTicks(WebCell& cell);
    void AddValueRow(const char* label, const char* name, const char* size, const UString& value);
    void AddDirectoryRow(const DirectoryCriterion& criterion);
    void AddDate(WebCell& cell, const char* name, const char* label, const UString& value);
    void AddTime(WebCell& cell, const char* name, const char* label, const UString& value);
    void AddButtons(WebForm& form);
    void AddOtherProblems(WebItem& messages);

    UString Attributes(const char* name, const char* more) const;
    void AddProblems(WebItem& cell, const char* name);
    bool HasProblem(const char* name) const;

    PortalContext& ctx_;
    const LumoraReportFilter& offered_;
    const LumoraReportFilter& current_;
    const std::vector<FilterProblem>& problems_;
    std::vector<bool> shown_;  // the problems that stand beside a field
    WebTable* table_ = nullptr;
};

void AddLabel(WebItem& parent, const char* field, const char* label) {
    parent.Add(new WebValue("<label for=\"%s\">%s</label>", field, label));
}

void AddMessage(WebItem& parent, const char* id, const UString& message) {
    parent.Add(new WebValue("<span class=\"fieldError\" role=\"alert\" id=\"%s\">%s</span>", id,
                            HtmlText(message.c_str()).c_str()));
}

bool FormBuilder::HasProblem(const char* name) const {
    for (const FilterProblem& problem : problems_)
        if (strcmp(problem.field, name) == 0) return true;
    return false;
}

// The attributes of the input of that name, which its label and its problem refer to.
UString FormBuilder::Attributes(const char* name, const char* more) const {
    UString attributes;
    attributes.Format("id=\"%s\" %s", name, more);
    if (HasProblem(name)) {
        UString invalid;
        invalid.Format(" class=\"invalid\" aria-invalid=\"true\" aria-describedby=\"%s_error\"",
                       name);
        attributes += invalid;
    }
    return attributes;
}

void FormBuilder::AddProblems(WebItem& cell, const char* name) {
    for (size_t i = 0; i < problems_.size(); ++i) {
        if (strcmp(problems_[i].field, name) != 0) continue;
        UString id;
        id.Format("%s_error", name);
        AddMessage(cell, id.c_str(), problems_[i].message);
        shown_[i] = true;
    }
}

WebCell& FormBuilder::AddRow(const char* field, const char* label) {
    WebRow& row = table_->Adopt(new WebRow(""));
    AddLabel(row.Adopt(new WebCell("class=\"formLabel\"")), field, label);
    return row.Adopt(new WebCell("class=\"formField\""));
}

void FormBuilder::AddDate(WebCell& cell, const char* name, const char* label,
                          const UString& value) {
    AddLabel(cell, name, label);
    cell.Add(
        new WebField(name, "date", HtmlAttr(value.c_str()).c_str(), Attributes(name, "").c_str()));
    AddProblems(cell, name);
}

void FormBuilder::AddPeriodRows() {
    LDAPDropDownValue usual;
    for (const PeriodOption& option : PeriodOptions())
        usual.Add(option.keyword, option.label);
    const LDAPDropDownValue& periods =
        offered_.ddl_daterange != nullptr ? *offered_.ddl_daterange : usual;
    const bool datesGiven = !current_.startDate.IsEmpty() || !current_.endDate.IsEmpty();
    const UString chosen = datesGiven && periods.choices.size() > kCustomPeriodIndex
                               ? UString(periods.choices[kCustomPeriodIndex].value.c_str())
                               : current_.reportPeriod;

    WebCell& cell = AddRow("reportPeriod", "Report Period");
    cell.Add(new LDAPDropDownList("reportPeriod", Attributes("reportPeriod", "").c_str(), periods,
                                  chosen.c_str(), /*none=*/nullptr));
    AddDate(cell, "startDate", "Start Date: ", current_.startDate);
    AddDate(cell, "endDate", "End Date: ", current_.endDate);
}

void FormBuilder::AddTime(WebCell& cell, const char* name, const char* label,
                          const UString& value) {
    UString more;
    more.Format(
        "size=\"4\" maxlength=\"4\" inputmode=\"numeric\" pattern=\"%s\" "
        "aria-label=\"%s\" title=\"hhmm (24hr)\"",
        kHhmmPattern, label);
    cell.Add(new WebField(name, "text", HtmlAttr(value.c_str()).c_str(),
                          Attributes(name, more.c_str()).c_str()));
}

void FormBuilder::AddTimeRow() {
    WebCell& cell = AddRow("begintime", "In Time Period");
    AddTime(cell, "begintime", "From this time of day", current_.begintime);
    cell.Add(new WebValue(" to "));
    AddTime(cell, "endtime", "To this time of day", current_.endtime);
    cell.Add(new WebValue("<span class=\"hint\">hhmm (24hr)</span>"));
}

void FormBuilder::AddEntityRow() {
    // Criteria of the session name the entity by its own field, and not by the search.
    UString kindChosen = current_.searchtype;
    UString text = current_.suggest1;
    for (const EntityKind& kind : EntityKinds()) {
        if (!kindChosen.IsEmpty() || (current_.*kind.field).IsEmpty()) continue;
        kindChosen = kind.searchtype;
        text = current_.*kind.field;
    }

    WebCell& cell = AddRow("suggest1", "For:");
    WebDropDownList& list = cell.Adopt(
        new WebDropDownList("searchtype", Attributes("searchtype", "aria-label=\"Kind\"").c_str()));
    for (const EntityKind& kind : EntityKinds())
        if (offered_.*kind.offered)
            list.Add(new WebDropDownListItem(kindChosen == kind.searchtype, kind.searchtype,
                                             kind.label));
    AddProblems(cell, "searchtype");
    UString more;
    more.Format(
        "size=\"40\" data-suggest=\"%s\" data-ticks=\"suggest1_ticks\" "
        "data-kind=\"searchtype\"",
        HtmlAttr(ctx_.GetURL(kSuggestEntities)).c_str());
    cell.Add(new WebField("suggest1", "text", HtmlAttr(text.c_str()).c_str(),
                          Attributes("suggest1", more.c_str()).c_str()));
    AddTicks(cell);
    cell.Adopt(new WebDiv("class=\"hint\"")).Add(new WebValue("Leave this empty for all"));
}

void FormBuilder::AddTicks(WebCell& cell) {
    WebDiv& row =
        cell.Adopt(new WebDiv("class=\"tickRow\" id=\"suggest1_ticks\" role=\"group\" "
                              "aria-label=\"Offer while typing\""));
    for (const EntityKind& kind : EntityKinds()) {
        if (!(offered_.*kind.offered)) continue;
        for (const auto& tick : kTicks)
            if (strcmp(tick.searchtype, kind.searchtype) == 0)
                row.Add(
                    new WebValue("<label><input type=\"checkbox\" name=\"%s\" id=\"%s\" "
                                 "checked>%s</label> ",
                                 tick.tick, tick.tick, tick.label));
    }
}

// A criterion that is any text, with the values that there are offered while somebody types.
void FormBuilder::AddValueRow(const char* label, const char* name, const char* size,
                              const UString& value) {
    UString id("suggest");
    id += name;
    UString more;
    more.Format("%s data-suggest=\"%s\"", size,
                HtmlAttr(ctx_.GetURL(kSuggestValues, name)).c_str());
    WebCell& cell = AddRow(id.c_str(), label);
    cell.Add(new WebField(name, "text", HtmlAttr(value.c_str()).c_str(),
                          Attributes(id.c_str(), more.c_str()).c_str()));
}

// Without the directory the rest of the form can be used all the same.
void FormBuilder::AddDirectoryRow(const DirectoryCriterion& criterion) {
    WebCell& cell = AddRow(criterion.field, criterion.label);
    LDAPDropDownValue value;
    if (ReadDirectoryChoices(ctx_, criterion, value)) {
        cell.Add(new LDAPDropDownList(criterion.field, Attributes(criterion.field, "").c_str(),
                                      value, (current_.*criterion.chosen).c_str(), criterion.all));
    } else {
        cell.Adopt(new WebDiv("class=\"fieldError\" role=\"alert\" id=\"%s\"", criterion.field))
            .Add(new WebValue("%s", kNoDirectory));
    }
    AddProblems(cell, criterion.field);
}

void FormBuilder::AddButtons(WebForm& form) {
    form.Add(new WebField("submit", "submit", HtmlAttr(offered_.submitTitle.c_str()).c_str(),
                          "id=\"generate_button\" class=\"CancelButton\""));
    WebDiv& progress = form.Adopt(new WebDiv("id=\"notify\" role=\"status\" hidden"));
    progress.Add(new WebValue("<img src=\"%s\" alt=\"\"> Generating the report ", kProgressImage));
    progress.Add(
        new WebField("cancel", "button", "Cancel", "id=\"cancel_button\" class=\"CancelButton\""));
}

// Problems of criteria that have no field here, for instance of a link's.
void FormBuilder::AddOtherProblems(WebItem& messages) {
    for (size_t i = 0; i < problems_.size(); ++i) {
        if (shown_[i]) continue;
        UString id;
        id.Format("problem%zu", i);
        AddMessage(messages.Adopt(new WebDiv("class=\"formProblem\"")), id.c_str(),
                   problems_[i].message);
    }
}

WebItem* FormBuilder::Build() {
    const UString action = HtmlAttr(ctx_.GetURL(nullptr));
    auto form = std::make_unique<WebForm>("searchForm", "post", action.c_str(),
                                          "id=\"searchForm\" AUTOCOMPLETE=\"off\"");
    form->Globals(ctx_, "pagename report");
    WebItem& messages = form->Adopt(new WebItem);
    table_ = &form->Adopt(new WebDiv("class=\"DetailTable\""))
                  .Adopt(new WebTable("class=\"lumoraFormTable\""));
    if (offered_.hasReportPeriod) AddPeriodRows();
    if (offered_.hasTimePeriod) AddTimeRow();
    bool anyKind = false;
    for (const EntityKind& kind : EntityKinds())
        anyKind = anyKind || offered_.*kind.offered;
    if (anyKind) AddEntityRow();
    if (offered_.hasTag) AddValueRow("Tag:", "tag", "style=\"width: 153px\"", current_.tagFilter);
    if (offered_.hasDDI) AddValueRow("DDI:", "ddi", "size=\"40\"", current_.ddi);
    for (const DirectoryCriterion& criterion : DirectoryCriteria())
        if (criterion.offered(offered_)) AddDirectoryRow(criterion);
    AddOtherProblems(messages);

    if (offered_.formExtras != nullptr) {
        offered_.formExtras->destroy = false;
        form->Add(offered_.formExtras);
    }
    AddButtons(*form);
    form->Add(
        new WebValue("<script src=\"lib/jquery.min.js\" defer></script>"
                     "<script src=\"lib/jquery-ui.min.js\" defer></script>"
                     "<script src=\"js/suggest.js\" defer></script>"
                     "<script src=\"js/cal.js\" defer></script>"
                     "<script src=\"js/select.js\" defer></script>"
                     "<script src=\"js/notify.js\" defer></script>\n"));
    return form.release();
}

}  // namespace

WebItem* LumoraReportFilter::filterForm(PortalContext& ctx, LumoraReportFilter& current,
                                        const std::vector<FilterProblem>& problems) {
    return FormBuilder(ctx, *this, current, problems).Build();
}
