#include "portal/management/ManagerPermissions.h"

#include "cgiFramework/SQLTransaction.h"
#include "cgiFramework/WebForm.h"
#include "common/Html.h"
#include "portal/context/ManagerContext.h"
#include "portal/management/ManagedUser.h"
#include "portal/management/PermissionRows.h"
#include "portal/theme/ListPage.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr char kNoRights[] = "Sorry you do not have rights to access this";
constexpr char kSuggest[] =
    "pagename=autorespond&userTick=on&deptTick=on&inboxTick=on&teammateTick=on";
constexpr char kListPage[] = "pagename=manager.search";
constexpr char kNotGenuine[] =
    "Nothing was changed, because your session had ended. Please send the form again.";
constexpr size_t kMostRows = 2000;

UString Text(const std::string& text) {
    return HtmlText(text.c_str());
}

// One request for the page.
class PermissionForm {
  public:
    PermissionForm(ManagerContext& ctx, SQLSession& db, const ManagedUser& user);
    // True when the posted form was carried out.
    bool Carry();
    void AddTo(WebItem& page);

  private:
    bool MaySet(const UserRight& right) const;
    void ReadPosted();
    PermissionFlags PostedFlags(const std::string& prefix) const;
    void Write();

    void AddRights(WebItem& form);
    void AddRows(WebItem& form);
    void AddRow(WebTable& table, const PermissionRow& row, size_t index);
    void AddNewRow(WebItem& form);
    void AddFlags(WebItem& parent, const std::string& prefix, const PermissionFlags& flags,
                  const std::string& whose, bool inCells);
    std::string Posted(const std::string& name) const { return PostedText(ctx_, name.c_str()); }

    ManagerContext& ctx_;
    SQLSession& db_;
    PermissionRows store_;
    std::set<int> ownRights_;
    bool seesEverybody_;
    std::set<int> rights_;
    std::vector<PermissionRow> rows_;
    std::vector<bool> removed_;  // of rows_, as posted
    PermissionRow added_;
    std::string addedText_;
    std::string problem_;       // beside the new row
    const char* message_ = "";  // above the form
};

PermissionForm::PermissionForm(ManagerContext& ctx, SQLSession& db, const ManagedUser& user)
    : ctx_(ctx), db_(db), store_(ctx, db, user.id) {
    PermissionRows own(ctx, db, ctx.contactId);
    ownRights_ = own.Rights();
    seesEverybody_ = ctx.isAdministrator() || own.Rows().empty();
    rights_ = store_.Rights();
    rows_ = store_.Rows();
    added_.type = PermissionTypes()[0];
    added_.flags.logging = true;
}

bool PermissionForm::MaySet(const UserRight& right) const {
    return ctx_.isAdministrator() || right.prohibits || ownRights_.count(right.id) != 0;
}

PermissionFlags PermissionForm::PostedFlags(const std::string& prefix) const {
    PermissionFlags flags;
    for (const PermissionFlag& flag : PermissionFlagList())
        flags.*flag.flag = Posted(prefix + flag.column) == "1";
    return flags;
}

// The rows as the browser had them: "row0" is "Type:number", and its boxes follow.
void PermissionForm::ReadPosted() {
    rows_.clear();
    for (size_t i = 0; i < kMostRows; ++i) {
        const std::string prefix = "row" + std::to_string(i);
        const std::string row = Posted(prefix);
        const size_t colon = row.find(':');
        if (colon == std::string::npos) break;
        rows_.push_back({row.substr(0, colon), row.substr(colon + 1), Posted(prefix + "_name"),
                         PostedFlags(prefix + "_")});
        removed_.push_back(Posted(prefix + "_remove") == "1");
    }
    for (const UserRight& right : UserRights()) {
        if (!MaySet(right)) continue;
        if (Posted("right" + std::to_string(right.id)) == "1")
            rights_.insert(right.id);
        else
            rights_.erase(right.id);
    }
    added_.type = Posted("new_type");
    added_.flags = PostedFlags("new_");
    addedText_ = Posted("new_entity");
}

void PermissionForm::Write() {
    SQLTransaction transaction(db_);
    store_.Lock();
    for (const UserRight& right : UserRights())
        if (MaySet(right)) store_.SetRight(right.id, rights_.count(right.id) != 0);
    for (size_t i = 0; seesEverybody_ && i < rows_.size(); ++i) {
        if (removed_[i])
            store_.Remove(rows_[i]);
        else
            store_.Update(rows_[i]);
    }
    if (seesEverybody_ && !addedText_.empty()) store_.AddOrReplace(added_);
    transaction.Commit();
}

bool PermissionForm::Carry() {
    if (!IsPost() || Posted("submit") != "Save") return false;
    ReadPosted();
    if (!ctx_.MayChange()) {
        message_ = kNotGenuine;
        return false;
    }
    if (!addedText_.empty()) {
        problem_ = IsPermissionType(added_.type) ? store_.Find(addedText_, added_)
                                                 : "Please choose one of the list.";
        if (!problem_.empty()) {
            message_ = "Nothing was saved yet. Please look at what is marked below.";
            return false;
        }
    }
    Write();
    return true;
}

void PermissionForm::AddTo(WebItem& page) {
    if (*message_ != '\0')
        page.Adopt(new WebDiv("class=\"reportWarning\" role=\"alert\""))
            .Add(new WebValue("%s", message_));
    const UString action = HtmlAttr(ctx_.GetURL(nullptr));
    WebForm& form = page.Adopt(new WebForm("detailForm", "post", action.c_str(),
                                           "id=\"detailForm\" AUTOCOMPLETE=\"off\""));
    form.Globals(ctx_, "index");
    AddRights(form);
    if (seesEverybody_) {
        AddRows(form);
        AddNewRow(form);
    }
    const UString back = HtmlAttr(ctx_.GetURL("%s", kListPage));
    form.Adopt(new WebDiv("class=\"formButtons\""))
        .Add(
            new WebValue("<button name=\"submit\" value=\"Save\" class=\"mainButton\">Save</button>"
                         "<a href=\"%s\">Cancel</a>"
                         "<script src=\"js/detail.js\" defer></script>",
                         back.c_str()));
}

void PermissionForm::AddRights(WebItem& form) {
    form.Add(new WebValue("<h2>Rights</h2>\n"));
    WebDiv& list =
        form.Adopt(new WebDiv("class=\"DetailTable\"")).Adopt(new WebDiv("class=\"tickList\""));
    for (const UserRight& right : UserRights()) {
        const bool held = rights_.count(right.id) != 0;
        list.Add(new WebValue(
            "<label><input type=\"checkbox\" name=\"right%d\" value=\"1\"%s%s>"
            "%s</label>\n",
            right.id, held ? " checked" : "", MaySet(right) ? "" : " disabled", right.caption));
    }
}

void PermissionForm::AddFlags(WebItem& parent, const std::string& prefix,
                              const PermissionFlags& flags, const std::string& whose,
                              bool inCells) {
    for (const PermissionFlag& flag : PermissionFlagList()) {
        const char* ticked = flags.*flag.flag ? " checked" : "";
        if (inCells)
            parent.Adopt(new WebCell(""))
                .Add(new WebValue(
                    "<input type=\"checkbox\" name=\"%s%s\" value=\"1\" aria-label=\"%s: %s\"%s>",
                    prefix.c_str(), flag.column, HtmlAttr(whose.c_str()).c_str(), flag.caption,
                    ticked));
        else
            parent.Add(new WebValue(
                "<label><input type=\"checkbox\" name=\"%s%s\" value=\"1\"%s>%s</label> ",
                prefix.c_str(), flag.column, ticked, flag.caption));
    }
}

void PermissionForm::AddRow(WebTable& table, const PermissionRow& row, size_t index) {
    const std::string prefix = "row" + std::to_string(index);
    WebRow& line =
        table.Adopt(new WebRow(index % 2 == 0 ? "class=\"oddrow\"" : "class=\"evenrow\""));
    WebCell& name = line.Adopt(new WebCell(""));
    const std::string shown = row.name.empty() ? row.number : row.name;
    name.Add(new WebValue("%s", Text(shown).c_str()));
    name.Add(new WebField(prefix.c_str(), "hidden",
                          HtmlAttr((row.type + ":" + row.number).c_str()).c_str(), ""));
    name.Add(
        new WebField((prefix + "_name").c_str(), "hidden", HtmlAttr(row.name.c_str()).c_str(), ""));
    line.Adopt(new WebCell("")).Add(new WebValue("%s", Text(row.type).c_str()));
    line.Adopt(new WebCell("")).Add(new WebValue("%s", Text(row.number).c_str()));
    AddFlags(line, prefix + "_", row.flags, shown, /*inCells=*/true);
    line.Adopt(new WebCell(""))
        .Add(new WebValue(
            "<input type=\"checkbox\" name=\"%s_remove\" value=\"1\" aria-label=\"Remove %s\"%s>",
            prefix.c_str(), HtmlAttr(shown.c_str()).c_str(),
            index < removed_.size() && removed_[index] ? " checked" : ""));
}

void PermissionForm::AddRows(WebItem& form) {
    form.Add(new WebValue("<h2>Whom the user sees</h2>\n"));
    if (rows_.empty()) {
        form.Adopt(new WebDiv("class=\"notice\""))
            .Add(new WebValue("Everybody: there is no restriction yet."));
        return;
    }
    form.Add(
        new WebValue("<p class=\"hint\">Of each kind that is listed, the user sees the listed "
                     "ones alone; of the other kinds, everybody.</p>\n"));
    WebTable& table = form.Adopt(new WebDiv("class=\"tableScroll\" tabindex=\"0\" role=\"region\" "
                                            "aria-label=\"Whom the user sees\""))
                          .Adopt(new WebTable("class=\"reportTable\""));
    WebRow& headings = *new WebRow("");
    table.AddHeader(&headings);
    const auto heading = [&](const char* caption) {
        headings.Adopt(new WebCellHeader("scope=\"col\"")).Add(new WebValue("%s", caption));
    };
    heading("Name");
    heading("Kind");
    heading("Number");
    for (const PermissionFlag& flag : PermissionFlagList())
        heading(flag.caption);
    heading("Remove");
    for (size_t i = 0; i < rows_.size(); ++i)
        AddRow(table, rows_[i], i);
}

void PermissionForm::AddNewRow(WebItem& form) {
    form.Add(new WebValue("<h2>Add</h2>\n"));
    WebDiv& box = form.Adopt(new WebDiv("class=\"DetailTable\""));
    WebDiv& line = box.Adopt(new WebDiv("class=\"formField newPermission\""));
    line.Add(new WebValue("<label for=\"new_type\">Kind</label> "));
    WebDropDownList& types = line.Adopt(new WebDropDownList("new_type", "id=\"new_type\""));
    for (const char* type : PermissionTypes())
        types.Add(new WebDropDownListItem(added_.type == type, type, type));
    line.Add(new WebValue(" <label for=\"new_entity\">Name or number</label> "));
    UString attributes;
    attributes.Format("id=\"new_entity\" size=\"30\" maxlength=\"128\" data-suggest=\"%s\"%s",
                      HtmlAttr(ctx_.GetURL(kSuggest)).c_str(),
                      problem_.empty() ? ""
                                       : " class=\"invalid\" aria-invalid=\"true\" "
                                         "aria-describedby=\"new_entity_error\"");
    line.Add(new WebField("new_entity", "text", HtmlAttr(addedText_.c_str()).c_str(),
                          attributes.c_str()));
    line.Add(
        new WebValue("<script src=\"lib/jquery.min.js\" defer></script>"
                     "<script src=\"lib/jquery-ui.min.js\" defer></script>"
                     "<script src=\"js/suggest.js\" defer></script>"));
    AddFlags(box.Adopt(new WebDiv("class=\"tickRow\"")), "new_", added_.flags, "",
             /*inCells=*/false);
    if (!problem_.empty())
        box.Add(new WebValue(
            "<span class=\"fieldError\" role=\"alert\" id=\"new_entity_error\">%s</span>",
            Text(problem_).c_str()));
}

}  // namespace

WebItem* BuildManagerPermissions(ManagerContext& ctx, const ManagedUser& user) {
    const std::string title = "Permissions of " + user.Name();
    if (user.id == ctx.contactId && !ctx.isAdministrator())
        return MessagePage(ctx, title.c_str(), kNoRights);
    SQLSession db(ctx.GetSQLSession());
    PermissionForm form(ctx, db, user);
    if (form.Carry()) {
        ForgetIfSelf(ctx, user);
        return AnswerDone(ctx, title, ctx.GetURL("%s", kListPage), "saved");
    }
    auto page = std::make_unique<StandardPage>(ctx, /*addToHistory=*/!IsPost());
    page->title = title.c_str();
    form.AddTo(*page);
    return page.release();
}
