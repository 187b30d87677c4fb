#include "portal/management/ManagerEdit.h"

#include <algorithm>
#include <cstring>
#include <fstream>

#include "portal/context/ManagerContext.h"
#include "portal/management/ManagedUser.h"
#include "portal/management/ManagerPermissions.h"
#include "portal/theme/ListPage.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr char kNoRights[] = "Sorry you do not have rights to access this";
constexpr char kMissing[] = "This user does not exist.";
constexpr char kListPage[] = "pagename=manager.search";
constexpr char kZoneList[] = "/usr/share/zoneinfo/zone1970.tab";

constexpr char kKnownZoneSql[] = "SELECT CONVERT_TZ('2020-01-01', 'UTC', '%s') IS NOT NULL";
constexpr char kCategoriesSql[] =
    "SELECT id, name FROM CallReportType UNION SELECT 4, 'Call Centre Performance' "
    "WHERE NOT EXISTS (SELECT 1 FROM CallReportType WHERE id=4) ORDER BY id";
constexpr char kCompaniesSql[] =
    "SELECT DISTINCT GUID, cn FROM LDAPCompanies WHERE customerid IN ('%s') ORDER BY cn";
constexpr char kFavouriteCountSql[] =
    "SELECT COUNT(*) FROM CustomerContactAttrib WHERE userid='%i' AND attribname='myreport'";
constexpr char kResetFavouritesSql[] =
    "DELETE FROM CustomerContactAttrib WHERE userid='%i' AND attribname='myreport'";

// One address and nothing else: it stands in the head of mails.
std::string CheckAddress(const std::string& text) {
    if (text.empty()) return "";
    const size_t at = text.find('@');
    const bool valid = at != std::string::npos && at > 0 && at + 1 < text.size() &&
                       text.find('@', at + 1) == std::string::npos &&
                       text.find_first_of(" ,;<>\"()\\") == std::string::npos;
    return valid ? "" : "Please enter one mail address, such as name@example.com.";
}

std::vector<SQLChoice> Query(SQLSession& db, const SqlText& statement) {
    std::vector<SQLChoice> choices;
    db.Query(statement);
    while (db.NextRow())
        choices.push_back({db.Column(0), db.Column(1)});
    return choices;
}

std::vector<SQLChoice> TimeZones() {
    std::vector<SQLChoice> zones;
    std::ifstream list(kZoneList);
    for (std::string line; std::getline(list, line);) {
        if (line.empty() || line[0] == '#') continue;
        // Countries, coordinates, name and remarks, parted by tabs.
        const size_t second = line.find('\t', line.find('\t') + 1) + 1;
        const std::string name = line.substr(second, line.find('\t', second) - second);
        zones.push_back({name, name});
    }
    std::sort(zones.begin(), zones.end(),
              [](const SQLChoice& a, const SQLChoice& b) { return a.value < b.value; });
    zones.insert(zones.begin(), {{"", "The portal's own"}, {"UTC", "UTC"}});
    return zones;
}

SQLField TextField(const char* name, const char* label, int length) {
    SQLField field;
    field.name = field.column = name;
    field.label = label;
    field.maxLength = length;
    return field;
}

SQLField Attribute(const char* name, const char* label, SQLFieldType type,
                   std::vector<SQLChoice> choices) {
    SQLField field;
    field.name = field.column = name;
    field.label = label;
    field.type = type;
    field.attribute = true;
    field.choices = std::move(choices);
    return field;
}

// A zone that the database does not know would close the portal to the user.
SQLField TimeZoneField(SQLSession& db) {
    SQLField field = Attribute("timezone", "Time zone", SQLFieldType::kChoice, TimeZones());
    field.hint = "Moves the days and times that the user sees.";
    field.check = [&db](const std::string& zone) -> std::string {
        db.Query(SqlText(kKnownZoneSql, SqlQuoted(zone.c_str())));
        return zone.empty() || (db.NextRow() && db.IntColumn(0) == 1)
                   ? ""
                   : "The database does not know this time zone.";
    };
    return field;
}

SQLField FavouritesField(SQLSession& db, int userId) {
    db.Query(SqlText(kFavouriteCountSql, userId));
    db.NextRow();
    const std::string count = db.Column(0);
    SQLField field;
    field.name = "favourites";
    field.label = "Reset favourites";
    field.type = SQLFieldType::kCheckBox;
    field.hint = count == "0"
                     ? "The user has no favourite reports."
                     : "The user has " + count + " favourite report" + (count == "1" ? "." : "s.");
    return field;
}

SQLDetailDefinition Details(ManagerContext& ctx, SQLSession& db, const ManagedUser& user) {
    SQLDetailDefinition definition;
    SQLRowDefinition& row = definition.row;
    row.table = "CustomerContact";
    row.scope = {{"customerid", ctx.customerIdString.c_str()}};
    row.attributes = {"CustomerContactAttrib", "userid", "attribname", "attribvalue"};

    row.fields = {TextField("username", "User name", 128), TextField("fullName", "Name", 128),
                  TextField("email", "Mail", 255)};
    row.fields[0].type = SQLFieldType::kReadOnly;
    row.fields[2].check = CheckAddress;
    // What limits a user is not theirs to lift, nor anybody's who is limited alike.
    const bool others = user.id != ctx.contactId;
    if (ctx.isAdministrator() || (others && ctx.reportMask.IsEmpty())) {
        row.fields.push_back(Attribute("reportmask", "Report categories", SQLFieldType::kBits,
                                       Query(db, SqlText(kCategoriesSql))));
    }
    row.fields.push_back(TimeZoneField(db));
    if (ctx.isAdministrator() || (others && ctx.GetCompanyGUID().IsEmpty())) {
        // The context joins the group's ids itself: numbers, made to stand inside IN('...').
        std::vector<SQLChoice> companies =
            Query(db, SqlText(kCompaniesSql, SqlFragment(ctx.GetCustomerSearchGroup())));
        companies.insert(companies.begin(), {"", "All companies"});
        row.fields.push_back(
            Attribute("company", "Company", SQLFieldType::kChoice, std::move(companies)));
    }
    row.fields.push_back(FavouritesField(db, user.id));
    return definition;
}

WebItem* AnswerDetails(ManagerContext& ctx, const ManagedUser& user) {
    SQLSession db(ctx.GetSQLSession());
    const UString back = ctx.GetURL("%s", kListPage);
    auto detail = std::make_unique<SQLWebDetail>(
        ctx, db, Details(ctx, db, user),
        SQLDetailRequest{std::to_string(user.id), ctx.MayChange(), back.c_str()});
    const std::string title = "User " + user.username;
    if (detail->outcome() == SQLWebDetail::Outcome::kSaved) {
        if (PostedText(ctx, "favourites") == "1") db.Execute(SqlText(kResetFavouritesSql, user.id));
        ForgetIfSelf(ctx, user);
        return AnswerDone(ctx, title, back.c_str(), "saved");
    }
    if (detail->outcome() == SQLWebDetail::Outcome::kMissing)
        return MessagePage(ctx, title.c_str(), kMissing);
    auto page = std::make_unique<StandardPage>(ctx, /*addToHistory=*/!IsPost());
    page->title = title.c_str();
    page->Add(detail.release());
    return page.release();
}

}  // namespace

WebItem* ManagerEdit(ManagerContext& ctx, bool permissions) {
    const char* title = permissions ? "Permissions" : "User";
    if (!MayManage(ctx)) return MessagePage(ctx, title, kNoRights);
    const std::optional<ManagedUser> user = FindManagedUser(ctx);
    if (!user) return MessagePage(ctx, title, kMissing);
    if (!MayManageUser(ctx, *user)) return MessagePage(ctx, title, kNoRights);
    return permissions ? BuildManagerPermissions(ctx, *user) : AnswerDetails(ctx, *user);
}
