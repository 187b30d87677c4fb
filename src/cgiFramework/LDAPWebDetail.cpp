#include "cgiFramework/LDAPWebDetail.h"

#include <utility>

#include "cgiFramework/LDAPSearch.h"
#include "cgiFramework/SQLWebDetail.h"
#include "cgiFramework/WebForm.h"
#include "common/Html.h"
#include "ldap/LDAPSession.h"
#include "ldap/ldap.h"

namespace {

constexpr char kNotGenuine[] =
    "Nothing was changed, because your session had ended. Please send the form again.";
constexpr char kNoDirectory[] = "This cannot be shown, because the directory cannot be read.";
constexpr char kNotWritten[] =
    "The directory server did not take the change. Another entry may have that name.";
constexpr char kProblems[] = "Nothing was saved yet. Please look at what is marked below.";

}  // namespace

LDAPWebDetail::LDAPWebDetail(WebContext& ctx, LDAPSession& session, LDAPDetailDefinition definition,
                             LDAPDetailRequest request)
    : ctx_(ctx),
      session_(session),
      definition_(std::move(definition)),
      request_(std::move(request)) {
    if (!ReadEntry()) return;
    const bool posted = IsPost() && PostedText(ctx_, "submit") == "Save";
    ReadInputs(posted);
    if (posted && !request_.genuine)
        AddMessage(kNotGenuine);
    else if (posted)
        Save();
    if (outcome_ == Outcome::kForm) AddForm();
}

bool LDAPWebDetail::ReadEntry() {
    LDAPTable found;
    if (!SearchDirectory(session_, definition_.base.c_str(), definition_.filter.c_str(), found)) {
        outcome_ = Outcome::kFailed;
        AddMessage(kNoDirectory);
        return false;
    }
    if (found.GetRowCount() == 0) {
        outcome_ = Outcome::kMissing;
        return false;
    }
    entry_ = *found[0];
    for (SQLField& field : definition_.fields)
        if (IsComputed(field)) field.type = SQLFieldType::kReadOnly;
    return true;
}

bool LDAPWebDetail::IsComputed(const SQLField& field) const {
    return entry_.Has(("_" + field.column).c_str());
}

void LDAPWebDetail::ReadInputs(bool posted) {
    for (const SQLField& field : definition_.fields) {
        StoredToInputs(field, entry_[field.column.c_str()].value.c_str(), inputs_);
        if (posted) RequestToInputs(field, ctx_, inputs_);
    }
}

void LDAPWebDetail::Save() {
    std::map<std::string, std::string> values;  // by attribute
    for (const SQLField& field : definition_.fields) {
        if (field.type == SQLFieldType::kReadOnly) continue;
        const std::string problem = InputsToStored(field, inputs_, values[field.column]);
        if (!problem.empty()) problems_[field.name] = problem;
    }
    if (!problems_.empty())
        AddMessage(kProblems);
    else if (Write(values))
        outcome_ = Outcome::kSaved;
    else
        AddMessage(kNotWritten);
}

// The name first: it is what the directory may refuse. The entry keeps its GUID.
bool LDAPWebDetail::Write(const std::map<std::string, std::string>& values) {
    LDAPRow changes(entry_);
    for (LDAPField& field : changes.fields)
        field.local = true;
    bool renamed = false;
    for (const auto& [attribute, value] : values) {
        if (entry_[attribute.c_str()].value == value.c_str()) continue;
        changes.Field(attribute.c_str(), "%s", value.c_str());
        changes[attribute.c_str()].local = false;
        renamed = renamed || attribute == "cn";
    }
    if (renamed && changes.ModifyCN(session_) != kLdapSuccess) return false;
    return changes.Modify(session_) == kLdapSuccess;
}

void LDAPWebDetail::AddMessage(const char* text) {
    Adopt(new WebDiv("class=\"reportWarning\" role=\"alert\"")).Add(new WebValue("%s", text));
}

void LDAPWebDetail::AddForm() {
    const UString action = HtmlAttr(ctx_.GetURL(nullptr));
    WebForm& form = Adopt(new WebForm("detailForm", "post", action.c_str(),
                                      "id=\"detailForm\" AUTOCOMPLETE=\"off\""));
    form.Globals(ctx_, "index");
    AddFieldTable(form, definition_.fields, inputs_, problems_);
    WebDiv& bar = form.Adopt(new WebDiv("class=\"formButtons\""));
    bar.Add(
        new WebValue("<button name=\"submit\" value=\"Save\" class=\"mainButton\">Save</button>"));
    if (!request_.back.empty())
        bar.Add(new WebValue("<a href=\"%s\">Cancel</a>", HtmlAttr(request_.back.c_str()).c_str()));
}
