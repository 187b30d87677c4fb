#include "portal/management/CustomerUserPassword.h"

#include <cstring>

#include "cgiFramework/SQLTransaction.h"
#include "cgiFramework/SQLWebDetail.h"
#include "cgiFramework/WebForm.h"
#include "common/Html.h"
#include "portal/context/ManagerContext.h"
#include "portal/management/PasswordFile.h"

namespace {

constexpr char kTitle[] = "Change Password";
constexpr char kElsewhere[] =
    "Your password is not kept by this portal. Please change it where you sign in, or ask your "
    "administrator.";
constexpr char kNotGenuine[] =
    "Nothing was changed, because your session had ended. Please send the form again.";

constexpr char kOld[] = "oldPassword";
constexpr char kNew[] = "newPassword";
constexpr char kRepeat[] = "repeatPassword";
constexpr size_t kShortest = 8;
constexpr size_t kLongest = 72;  // bytes; the hash ignores what follows

constexpr char kUserSql[] =
    "SELECT username, passwordHash FROM CustomerContact WHERE id='%i' AND customerid='%i' "
    "FOR UPDATE";
enum { kUserName, kHash };
constexpr char kStoreSql[] =
    "UPDATE CustomerContact SET passwordHash='%s' WHERE id='%i' AND customerid='%i'";

std::string Take(WebContext& ctx, const char* name) {
    std::string text = PostedText(ctx, name);
    ctx.RemoveWebArgument(name);
    return text;
}

bool HasControl(const std::string& text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F) return true;
    return false;
}

const char* CheckNew(const std::string& wanted) {
    if (wanted.size() < kShortest) return "The new password must have at least 8 characters.";
    if (wanted.size() > kLongest) return "The new password is too long.";
    if (HasControl(wanted)) return "The new password holds characters that cannot be typed.";
    return nullptr;
}

}  // namespace

bool HasPasswordFile(ManagerContext& ctx) {
    return *ctx.GetSetting("passwordFile") != '\0';
}

CustomerUserPassword::CustomerUserPassword(ManagerContext& ctx)
    : StandardPage(ctx, /*addToHistory=*/false) {
    title = kTitle;
    const Entry entry = TakeFrom(ctx);
    if (!HasPasswordFile(ctx) || ctx.contactId == 0) {
        Adopt(new WebDiv("class=\"notice\"")).Add(new WebValue("%s", kElsewhere));
        return;
    }
    const char* problem = nullptr;
    const char* field = nullptr;
    if (IsPost() && PostedText(ctx, "submit") == "Save") {
        problem = ctx.MayChange() ? Change(ctx, entry, field) : kNotGenuine;
        if (problem == nullptr) {
            Adopt(new WebDiv("class=\"notice\" role=\"status\""))
                .Add(
                    new WebValue("Your password was changed. Your browser will ask for the new one "
                                 "with the next page."));
            return;
        }
    }
    AddForm(ctx, problem, field);
}

CustomerUserPassword::Entry CustomerUserPassword::TakeFrom(WebContext& ctx) {
    return {Take(ctx, kOld), Take(ctx, kNew), Take(ctx, kRepeat)};
}

const char* CustomerUserPassword::Change(ManagerContext& ctx, const Entry& entry,
                                         const char*& field) {
    SQLSession db(ctx.GetSQLSession());
    // One file holds everybody's password, so one change is made at a time.
    const SQLNamedLock lock(db, "lumora.passwordFile");
    SQLTransaction transaction(db);
    db.Query(SqlText(kUserSql, ctx.contactId, ctx.customerId));
    if (!db.NextRow()) return "Your user is gone.";
    const std::string user = db.Column(kUserName);
    const std::string hash = db.Column(kHash);
    field = kOld;
    if (!IsPassword(entry.present, hash)) {
        // The same form sent twice: the first has changed it already.
        return entry.wanted == entry.repeated && IsPassword(entry.wanted, hash)
                   ? nullptr
                   : "This is not your present password.";
    }
    field = kNew;
    if (const char* problem = CheckNew(entry.wanted)) return problem;
    if (entry.wanted == entry.present) return "The new password is the old one.";
    field = kRepeat;
    if (entry.wanted != entry.repeated) return "The two new passwords differ.";

    const std::string newHash = HashPassword(entry.wanted);
    db.Execute(SqlText(kStoreSql, SqlQuoted(newHash.c_str()), ctx.contactId, ctx.customerId));
    RewritePasswordFile(ctx.GetSetting("passwordFile"), user, newHash);
    transaction.Commit();
    return nullptr;
}

void CustomerUserPassword::AddField(WebItem& table, const char* name, const char* label,
                                    const char* complete, const char* hint, const char* problem) {
    WebRow& row = table.Adopt(new WebRow(""));
    row.Adopt(new WebCell("class=\"formLabel\""))
        .Add(new WebValue("<label for=\"%s\">%s</label>", name, label));
    WebCell& cell = row.Adopt(new WebCell("class=\"formField\""));
    UString attributes;
    attributes.Format("id=\"%s\" size=\"30\" maxlength=\"72\" required autocomplete=\"%s\"%s", name,
                      complete,
                      problem == nullptr ? "" : " class=\"invalid\" aria-invalid=\"true\"");
    cell.Add(new WebField(name, "password", "", attributes.c_str()));
    if (*hint != '\0') cell.Add(new WebValue("<div class=\"hint\">%s</div>", hint));
    if (problem != nullptr)
        cell.Add(new WebValue("<span class=\"fieldError\" role=\"alert\">%s</span>", problem));
}

void CustomerUserPassword::AddForm(ManagerContext& ctx, const char* problem, const char* field) {
    if (problem != nullptr && field == nullptr)
        Adopt(new WebDiv("class=\"reportWarning\" role=\"alert\""))
            .Add(new WebValue("%s", problem));
    const auto problemOf = [&](const char* name) {
        return field != nullptr && strcmp(field, name) == 0 ? problem : nullptr;
    };
    const UString action = HtmlAttr(ctx.GetURL(nullptr));
    WebForm& form = Adopt(new WebForm("detailForm", "post", action.c_str(), "id=\"detailForm\""));
    WebTable& table = form.Adopt(new WebDiv("class=\"DetailTable\""))
                          .Adopt(new WebTable("class=\"lumoraFormTable\""));
    AddField(table, kOld, "Present password", "current-password", "", problemOf(kOld));
    AddField(table, kNew, "New password", "new-password", "At least 8 characters", problemOf(kNew));
    AddField(table, kRepeat, "New password again", "new-password", "", problemOf(kRepeat));
    form.Adopt(new WebDiv("class=\"formButtons\""))
        .Add(
            new WebValue("<button name=\"submit\" value=\"Save\" class=\"mainButton\">Save</button>"
                         "<script src=\"js/detail.js\" defer></script>"));
}
