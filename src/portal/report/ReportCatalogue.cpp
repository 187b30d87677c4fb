#include "portal/report/ReportCatalogue.h"

#include <cstdlib>
#include <set>
#include <string>

#include "cgiFramework/WebForm.h"
#include "common/Html.h"
#include "common/Parse.h"
#include "portal/context/PortalContext.h"
#include "portal/report/ReportMessage.h"

namespace {

constexpr char kCatalogueSql[] =
    "SELECT pagename, crt.name, cr.name, description, category, "
    "IF(cca.attribvalue IS NOT NULL,1,0) AS myreport FROM CallReport AS cr "
    "LEFT JOIN CallReportType AS crt ON crt.id=cr.category "
    "LEFT JOIN CustomerContactAttrib AS cca on cca.userid='%i' AND cca.attribname='myreport' "
    "AND cca.attribvalue=cr.pagename "
    "LEFT JOIN CustomerContactAttrib AS cca2 ON cca2.userid='%i' AND "
    "cca2.attribname='reportmask' WHERE cr.hidden!=1 %s %s ORDER BY category, listorder";
enum { kPageName, kTypeName, kName, kDescription, kCategory, kMyReport };

constexpr char kPermittedCategories[] =
    " AND IF(cca2.attribvalue IS NULL,1,(1<<category)&cca2.attribValue) ";
constexpr char kFavouritesOnly[] = " AND cca.attribvalue IS NOT NULL ";
constexpr char kOneCategory[] = " AND category='%s'";
constexpr char kCategoryNameSql[] =
    "SELECT name FROM (SELECT * FROM CallReportType UNION SELECT 4,'Call Centre Performance') AS t "
    "WHERE id='%s'";

constexpr int kCallCentreCategory = 4;
constexpr int kMaskBits = 63;

// The contact-centre category has its name even where the table of types lacks it.
const char* CategoryName(const SQLSession& db) {
    if (*db.Column(kTypeName) != '\0') return db.Column(kTypeName);
    return db.IntColumn(kCategory) == kCallCentreCategory ? "Call Centre Performance" : "Other";
}

bool ShowsFavourites(const WebContext& ctx) {
    const std::string_view filter = ctx.ArgumentText("filterVal");
    return !filter.empty() && filter != "0";
}

// The category asked for, or an empty text.
const char* CategoryAsked(const WebContext& ctx) {
    const char* category = ctx.ArgumentText("category");
    return IsDigits(category, 1, 9) ? category : "";
}

// The address of this list, as it is shown now.
UString ListUrl(PortalContext& ctx) {
    UString url = ctx.GetURL("pagename=callreport");
    if (ShowsFavourites(ctx)) url += "&filterVal=1";
    if (const char* category = CategoryAsked(ctx); *category != '\0') {
        url += "&category=";
        url += category;
    }
    return url;
}

UString Link(const char* url, const char* more = "") {
    UString href;
    href.Format("href=\"%s\"%s", HtmlAttr(url).c_str(), more);
    return href;
}

// The choice between all reports and the favourites, and a box that finds reports while somebody
// types, which a script shows.
void AddOptions(PortalContext& ctx, WebItem& list) {
    const bool favourites = ShowsFavourites(ctx);
    WebForm& form =
        list.Adopt(new WebForm("reportOptions", "get", HtmlAttr(ctx.GetURL(nullptr)).c_str(),
                               "id=\"reportOptions\" class=\"reportOptions\""));
    form.Add(new WebValue("<label for=\"filterVal\">Select Report</label>"));
    WebDropDownList& box =
        form.Adopt(new WebDropDownList("filterVal", "id=\"filterVal\" class=\"ReportOptions\""));
    box.Add(new WebDropDownListItem(!favourites, "0", "All Reports"));
    box.Add(new WebDropDownListItem(favourites, "1", "My Reports"));
    if (const char* category = CategoryAsked(ctx); *category != '\0')
        form.Add(new WebField("category", "hidden", category, ""));
    form.Add(new WebValue("<button type=\"submit\">Show</button>"));
    form.Add(
        new WebValue("<label class=\"reportSearch\" hidden>Find <input type=\"search\" "
                     "id=\"reportSearch\" autocomplete=\"off\"></label>"
                     "<script src=\"js/catalogue.js\" defer></script>\n"));
}

// What the mouse is shown over a favourite is the picture of taking it out; the style sheet swaps
// them.
void AddToggle(const SQLSession& db, const UString& listUrl, WebItem& row) {
    const bool favourite = db.IntColumn(kMyReport) != 0;
    UString page;
    AppendSafe(page, db.Column(kPageName));
    UString url;
    if (favourite)
        url.Format("%s&removemyreport=%s", listUrl.c_str(), page.c_str());
    else
        url.Format("%s&addmyreport=%s", listUrl.c_str(), page.c_str());

    // The link has the report's name for those who hear it.
    UString attributes;
    attributes.Format(favourite ? " class=\"chosen\" aria-label=\"Remove %s from My Reports\""
                                : " class=\"offered\" aria-label=\"Add %s to My Reports\"",
                      HtmlAttr(db.Column(kName)).c_str());
    WebItem& link = row.Adopt(new WebCell("class=\"favourite\" width=\"16\""))
                        .Adopt(new WebLink(Link(url.c_str(), attributes.c_str()).c_str()));
    if (favourite)
        link.Add(
            new WebValue("<img class=\"now\" src=\"Images/theme6/addfav6.png\" alt=\"\" "
                         "title=\"Remove report from My Reports\">"
                         "<img class=\"then\" src=\"Images/theme6/delfav.png\" alt=\"\" "
                         "title=\"Remove report from My Reports\">"));
    else
        link.Add(
            new WebValue("<img src=\"Images/theme6/addfav.png\" alt=\"\" "
                         "title=\"Add report to My Reports\">"));
}

void AddReport(const SQLSession& db, const UString& listUrl, const UString& pageUrl,
               WebTable& list) {
    UString url(pageUrl);
    url += "&report=";
    url.AppendSafe(db.Column(kPageName));
    UString css;
    css.Format("class=\"reportTitle reporttype%s\"", HtmlAttr(db.Column(kCategory)).c_str());

    WebRow& row = list.Adopt(new WebRow("class=\"reportListRow\""))
                      .Adopt(new WebCell(css.c_str()))
                      .Adopt(new WebTable("role=\"presentation\" width=\"100%\""))
                      .Adopt(new WebRow(""));
    row.Adopt(new WebCell(""))
        .Adopt(new WebLink(Link(url.c_str()).c_str()))
        .Add(new WebValue("%s", HtmlText(db.Column(kName)).c_str()));
    AddToggle(db, listUrl, row);
    // The focus, by keyboard or touch, shows all of it, as the mouse does.
    row.Adopt(new WebCell(""))
        .Adopt(new WebDiv("class=\"tooltip\" tabindex=\"0\""))
        .Add(new WebValue("<img src=\"Images/theme6/info.png\" alt=\"\"><span>%s</span>",
                          HtmlText(db.Column(kDescription)).c_str()));
}

void AddCategoryLink(PortalContext& ctx, const SQLSession& db, WebItem& categories) {
    const UString url = ctx.GetURL("pagename=callreport&category=%d", db.IntColumn(kCategory));
    categories.Adopt(new WebLink(Link(url.c_str()).c_str()))
        .Add(new WebValue("%s", HtmlText(CategoryName(db)).c_str()));
}

void AddNothing(PortalContext& ctx, WebItem& list) {
    if (!ShowsFavourites(ctx)) {
        list.Add(new ReportNotice("No reports are available to you."));
        return;
    }
    list.Add(
        new ReportNotice("There are no reports in My Reports yet. Show all reports, and choose "
                         "the star beside a report to keep it here."));
    list.Adopt(new WebLink(Link(ctx.GetURL("pagename=callreport&filterVal=0")).c_str()))
        .Add(new WebValue("Show all reports"));
}

SqlText CatalogueQuery(PortalContext& ctx) {
    std::string shown = ShowsFavourites(ctx) ? kFavouritesOnly : "";
    if (const char* category = CategoryAsked(ctx); *category != '\0')
        shown += SqlText(kOneCategory, SqlQuoted(category)).c_str();
    return SqlText(kCatalogueSql, ctx.contactId, ctx.contactId, SqlFragment(kPermittedCategories),
                   SqlFragment(shown));
}

}  // namespace

bool IsCategoryAllowed(const char* reportMask, int category) {
    if (*reportMask == '\0') return true;
    if (category < 0 || category >= kMaskBits) return false;
    return (strtoll(reportMask, nullptr, 10) >> category & 1) != 0;
}

UString CatalogueTitle(PortalContext& ctx) {
    if (const char* category = CategoryAsked(ctx); *category != '\0') {
        SQLSession db(ctx.GetSQLSession());
        db.Query(SqlText(kCategoryNameSql, SqlQuoted(category)));
        if (db.NextRow()) return UString(db.Column(0)) + " Reports";
    }
    return "Reports";
}

ReportCatalogue::ReportCatalogue(PortalContext& ctx)
    : WebDiv("class=\"catalogueList\" id=\"catalogue\"") {
    // Copied: the context reuses one buffer for every URL it builds.
    const UString listUrl = ListUrl(ctx);
    const UString pageUrl = ctx.GetURL("pagename=callreport");
    AddOptions(ctx, *this);
    WebItem* categories = nullptr;
    if (*CategoryAsked(ctx) != '\0')
        Adopt(new WebDiv("class=\"categories\""))
            .Adopt(new WebLink(Link(pageUrl.c_str()).c_str()))
            .Add(new WebValue("All categories"));
    else
        categories =
            &Adopt(new WebDiv("class=\"categories\" role=\"navigation\" "
                              "aria-label=\"Categories\""));

    SQLSession db(ctx.GetSQLSession());
    db.Query(CatalogueQuery(ctx));
    // Attributes of a contact may be stored twice, and each doubles the rows of the join.
    std::set<std::string, std::less<>> listed;
    WebTable* list = nullptr;
    int category = 0;
    while (db.NextRow()) {
        if (!listed.emplace(db.Column(kPageName)).second) continue;
        if (list == nullptr || db.IntColumn(kCategory) != category) {
            category = db.IntColumn(kCategory);
            if (categories != nullptr) AddCategoryLink(ctx, db, *categories);
            Add(new WebValue("<h5>%s Reports</h5>\n", HtmlText(CategoryName(db)).c_str()));
            list = &Adopt(new WebTable("class=\"reportList\" role=\"presentation\""));
        }
        AddReport(db, listUrl, pageUrl, *list);
    }
    if (list == nullptr) AddNothing(ctx, *this);
}
