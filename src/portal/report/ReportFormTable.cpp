#include "portal/report/ReportFormTable.h"

#include <cstring>

#include "cgiFramework/LDAPDropDown.h"
#include "common/Html.h"
#include "portal/report/LumoraReportFilter.h"

namespace {

void AddMessage(WebItem& parent, const char* id, const UString& message) {
    parent.Add(new WebValue("<span class=\"fieldError\" role=\"alert\" id=\"%s\">%s</span>", id,
                            HtmlText(message.c_str()).c_str()));
}

}  // namespace

WebDiv& AddFormLine(WebItem& cell) {
    return cell.Adopt(new WebDiv("class=\"formLine\""));
}

void AddFormLabel(WebItem& parent, const char* id, const char* label) {
    parent.Add(new WebValue("<label for=\"%s\">%s</label>", id, label));
}

void AddFormHint(WebItem& parent, const char* hint) {
    parent.Add(new WebValue("<span class=\"hint\">%s</span>", hint));
}

ReportFormTable::ReportFormTable(WebItem& parent, const std::vector<FilterProblem>& problems)
    : problems_(problems),
      shown_(problems.size()),
      table_(parent.Adopt(new WebDiv("class=\"DetailTable\""))
                 .Adopt(new WebTable("class=\"lumoraFormTable\""))) {}

WebRow& ReportFormTable::AddEmptyRow() {
    const bool apart = sectionStarts_;
    sectionStarts_ = false;
    return table_.Adopt(new WebRow(apart ? "class=\"formSection\"" : ""));
}

WebItem& ReportFormTable::AddRow(const char* id, const char* label) {
    WebRow& row = AddEmptyRow();
    AddFormLabel(row.Adopt(new WebCell("class=\"formLabel\"")), id, label);
    return row.Adopt(new WebCell("class=\"formField\""));
}

WebItem& ReportFormTable::AddGroupRow(const char* id, const char* label) {
    WebRow& row = AddEmptyRow();
    row.Adopt(new WebCell("class=\"formLabel\""))
        .Add(new WebValue("<span id=\"%s\">%s</span>", id, label));
    return row.Adopt(new WebCell("class=\"formField\""))
        .Adopt(new WebDiv("role=\"group\" aria-labelledby=\"%s\"", id));
}

UString ReportFormTable::Attributes(const char* name, const char* id, const char* more) const {
    UString attributes;
    attributes.Format("id=\"%s\" %s", id, more);
    for (const FilterProblem& problem : problems_) {
        if (strcmp(problem.field, name) != 0) continue;
        UString invalid;
        invalid.Format(" class=\"invalid\" aria-invalid=\"true\" aria-describedby=\"%s_error\"",
                       name);
        attributes += invalid;
        break;
    }
    return attributes;
}

void ReportFormTable::AddText(WebItem& cell, const char* name, const UString& value,
                              const char* more, const char* id) {
    cell.Add(new WebField(name, "text", HtmlAttr(value.c_str()).c_str(),
                          Attributes(name, id != nullptr ? id : name, more).c_str()));
}

void ReportFormTable::AddCheckBox(WebItem& cell, const char* name, bool ticked, const char* label) {
    cell.Add(new WebValue("<label><input type=\"checkbox\" name=\"%s\" id=\"%s\"%s>%s</label> ",
                          name, name, ticked ? " checked" : "", label));
}

void ReportFormTable::AddList(WebItem& cell, const char* name, const LDAPDropDownValue& value,
                              const char* chosen, const char* none, const char* more) {
    cell.Add(new LDAPDropDownList(name, Attributes(name, name, more).c_str(), value, chosen, none));
}

void ReportFormTable::AddProblems(WebItem& cell, const char* name) {
    for (size_t i = 0; i < problems_.size(); ++i) {
        if (strcmp(problems_[i].field, name) != 0) continue;
        UString id;
        id.Format("%s_error", name);
        AddMessage(cell, id.c_str(), problems_[i].message);
        shown_[i] = true;
    }
}

void ReportFormTable::AddOtherProblems(WebItem& messages) {
    for (size_t i = 0; i < problems_.size(); ++i) {
        if (shown_[i]) continue;
        UString id;
        id.Format("problem%zu", i);
        AddMessage(messages.Adopt(new WebDiv("class=\"formProblem\"")), id.c_str(),
                   problems_[i].message);
    }
}
