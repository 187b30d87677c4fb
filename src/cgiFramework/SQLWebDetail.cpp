#include "cgiFramework/SQLWebDetail.h"

#include "cgiFramework/WebForm.h"
#include "common/Html.h"

namespace {

constexpr char kNotGenuine[] =
    "Nothing was changed, because your session had ended. Please send the form again.";

UString Text(const std::string& text) {
    return HtmlText(text.c_str());
}

}  // namespace

bool IsPost() {
    const char* method = getenv("REQUEST_METHOD");
    return method != nullptr && strcmp(method, "POST") == 0;
}

std::string PostedText(const WebContext& ctx, const char* name) {
    const WebArgument* argument = ctx.FindWebArgument(name);
    return argument != nullptr ? argument->Text() : "";
}

SQLWebDetail::SQLWebDetail(WebContext& ctx, SQLSession& db, SQLDetailDefinition definition,
                           SQLDetailRequest request)
    : ctx_(ctx),
      definition_(std::move(definition)),
      request_(std::move(request)),
      store_(db, definition_.row) {
    if (!request_.id.empty() && !store_.Read(request_.id, stored_)) {
        outcome_ = Outcome::kMissing;
        return;
    }
    const std::string wish = PostedText(ctx_, "submit");
    const bool posted = IsPost() && (wish == "Save" || wish == "Delete");
    ReadInputs(posted && wish == "Save");
    if (posted && !request_.genuine)
        AddMessage(kNotGenuine);
    else if (posted && wish == "Save")
        Save();
    else if (posted && definition_.removable && !request_.id.empty()) {
        Delete();
        return;
    }
    if (outcome_ == Outcome::kForm) AddForm();
}

void SQLWebDetail::ReadInputs(bool posted) {
    for (const SQLField& field : definition_.row.fields) {
        const auto value = stored_.find(field.name);
        if (value != stored_.end())
            StoredToInputs(field, value->second, inputs_);
        else if (!posted)
            StoredToInputs(field, "", inputs_);
        if (posted) RequestToInputs(field, ctx_, inputs_);
    }
}

void SQLWebDetail::Save() {
    SQLValues values;
    for (const SQLField& field : definition_.row.fields) {
        if (field.type == SQLFieldType::kReadOnly) continue;
        const std::string problem = InputsToStored(field, inputs_, values[field.name]);
        if (!problem.empty()) problems_[field.name] = problem;
    }
    if (problems_.empty()) {
        const bool isNew = request_.id.empty();
        switch (isNew ? store_.Insert(values) : store_.Update(request_.id, values)) {
            case SQLRowStore::Result::kDone:
                outcome_ = isNew ? Outcome::kAdded : Outcome::kSaved;
                return;
            case SQLRowStore::Result::kMissing:
                outcome_ = Outcome::kMissing;
                return;
            case SQLRowStore::Result::kDuplicate:
                problems_[definition_.row.unique] = definition_.duplicate;
                break;
        }
    }
    AddMessage("Nothing was saved yet. Please look at what is marked below.");
}

// Asks first.
void SQLWebDetail::Delete() {
    if (PostedText(ctx_, "confirm").empty()) return AddQuestion();
    outcome_ = store_.Remove(request_.id) == SQLRowStore::Result::kDone ? Outcome::kDeleted
                                                                        : Outcome::kMissing;
}

void SQLWebDetail::AddMessage(const std::string& text) {
    Adopt(new WebDiv("class=\"reportWarning\" role=\"alert\""))
        .Add(new WebValue("%s", Text(text).c_str()));
}

WebItem& SQLWebDetail::AddPostForm() {
    const UString action = HtmlAttr(ctx_.GetURL(nullptr));
    WebForm& form = Adopt(new WebForm("detailForm", "post", action.c_str(),
                                      "id=\"detailForm\" AUTOCOMPLETE=\"off\""));
    form.Globals(ctx_, "index");
    return form;
}

void SQLWebDetail::AddForm() {
    WebItem& form = AddPostForm();
    AddFieldTable(form, definition_.row.fields, inputs_, problems_);
    AddButtons(form);
}

void SQLWebDetail::AddButtons(WebItem& form) {
    WebDiv& bar = form.Adopt(new WebDiv("class=\"formButtons\""));
    bar.Add(
        new WebValue("<button name=\"submit\" value=\"Save\" class=\"mainButton\">Save</button>"));
    if (definition_.removable && !request_.id.empty())
        bar.Add(new WebValue(
            "<button name=\"submit\" value=\"Delete\" formnovalidate>Delete</button>"));
    if (!request_.back.empty())
        bar.Add(new WebValue("<a href=\"%s\">Cancel</a>", HtmlAttr(request_.back.c_str()).c_str()));
    bar.Add(new WebValue("<script src=\"js/detail.js\" defer></script>"));
}

void SQLWebDetail::AddQuestion() {
    WebItem& form = AddPostForm();
    form.Add(new WebField("confirm", "hidden", "1", ""));
    form.Adopt(new WebDiv("class=\"notice\" role=\"alert\""))
        .Add(new WebValue("Delete the %s &ldquo;%s&rdquo;? This cannot be undone.",
                          Text(definition_.noun).c_str(),
                          Text(stored_[definition_.naming]).c_str()));
    WebDiv& bar = form.Adopt(new WebDiv("class=\"formButtons\""));
    bar.Add(
        new WebValue("<button name=\"submit\" value=\"Delete\" class=\"mainButton\">Delete"
                     "</button><a href=\"%s\">Keep it</a>",
                     HtmlAttr(request_.back.c_str()).c_str()));
}
