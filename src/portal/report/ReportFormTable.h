// ReportFormTable.h: the rows of the criteria form: labels, inputs and what is wrong with them.
#pragma once

#include <vector>

#include "cgiFramework/WebForm.h"

class LDAPDropDownValue;
struct FilterProblem;

// A table of class "lumoraFormTable", a row a criterion. Each input's label and problem refer to
// it by its id, which is its name unless another is given. Texts from outside are escaped here.
class ReportFormTable {
  public:
    // The table becomes a part of `parent`. The problems must outlive it.
    ReportFormTable(WebItem& parent, const std::vector<FilterProblem>& problems);

    // A row whose label belongs to the input of that id. Answers the place for the inputs.
    WebItem& AddRow(const char* id, const char* label);
    // A row whose label, of that id, names several inputs together; they have labels of their own.
    WebItem& AddGroupRow(const char* id, const char* label);
    // The next row stands apart from those before it.
    void StartSection() { sectionStarts_ = true; }

    // A text field; `more` holds further attributes.
    void AddText(WebItem& cell, const char* name, const UString& value, const char* more,
                 const char* id = nullptr);
    void AddCheckBox(WebItem& cell, const char* name, bool ticked, const char* label);
    // A drop-down list. With `none` it begins with an empty choice of that caption.
    void AddList(WebItem& cell, const char* name, const LDAPDropDownValue& value,
                 const char* chosen, const char* none, const char* more = "");
    // What is wrong with the input of that name.
    void AddProblems(WebItem& cell, const char* name);
    // What is wrong with criteria that have no input here, for instance those of a link.
    void AddOtherProblems(WebItem& messages);

  private:
    WebRow& AddEmptyRow();
    UString Attributes(const char* name, const char* id, const char* more) const;

    const std::vector<FilterProblem>& problems_;
    std::vector<bool> shown_;  // the problems that stand beside an input
    WebTable& table_;
    bool sectionStarts_ = false;
};

// Inputs that stand side by side, and below each other where the page is too narrow.
WebDiv& AddFormLine(WebItem& cell);
// `label` is markup of the page's own.
void AddFormLabel(WebItem& parent, const char* id, const char* label);
void AddFormHint(WebItem& parent, const char* hint);
