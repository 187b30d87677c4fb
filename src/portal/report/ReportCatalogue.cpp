#include "portal/report/ReportCatalogue.h"

#include <cstdlib>
#include <set>
#include <string>

#include "common/Html.h"
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
enum { kPageName, kTypeName, kName, kDescription, kCategory };

constexpr char kPermittedCategories[] =
    " AND IF(cca2.attribvalue IS NULL,1,(1<<category)&cca2.attribValue) ";

constexpr int kCallCentreCategory = 4;
constexpr int kMaskBits = 63;

// The contact-centre category has its name even where the table of types lacks it.
const char* CategoryName(const SQLSession& db) {
    if (*db.Column(kTypeName) != '\0') return db.Column(kTypeName);
    return db.IntColumn(kCategory) == kCallCentreCategory ? "Call Centre Performance" : "Other";
}

void AddReport(const SQLSession& db, const UString& listUrl, WebTable& list) {
    UString url(listUrl);
    url += "&report=";
    url.AppendSafe(db.Column(kPageName));
    UString href;
    href.Format("href=\"%s\"", HtmlAttr(url.c_str()).c_str());
    UString css;
    css.Format("class=\"reportTitle reporttype%d\"", db.IntColumn(kCategory));

    WebRow& row = list.Adopt(new WebRow("class=\"reportListRow\""))
                      .Adopt(new WebCell(css.c_str()))
                      .Adopt(new WebTable("role=\"presentation\" width=\"100%\""))
                      .Adopt(new WebRow(""));
    row.Adopt(new WebCell(""))
        .Adopt(new WebLink(href.c_str()))
        .Add(new WebValue("%s", HtmlText(db.Column(kName)).c_str()));
    row.Adopt(new WebCell(""))
        .Adopt(new WebDiv("class=\"tooltip\""))
        .Add(new WebValue("<img src=\"Images/theme6/info.png\" alt=\"\"><span>%s</span>",
                          HtmlText(db.Column(kDescription)).c_str()));
}

}  // namespace

bool IsCategoryAllowed(const char* reportMask, int category) {
    if (*reportMask == '\0') return true;
    if (category < 0 || category >= kMaskBits) return false;
    return (strtoll(reportMask, nullptr, 10) >> category & 1) != 0;
}

ReportCatalogue::ReportCatalogue(PortalContext& ctx) {
    // Copied: the context reuses one buffer for every URL it builds.
    const UString listUrl = ctx.GetURL("pagename=callreport");
    SQLSession db(ctx.GetSQLSession());
    db.Query(SqlText(kCatalogueSql, ctx.contactId, ctx.contactId, SqlFragment(kPermittedCategories),
                     SqlFragment("")));

    // Attributes of a contact may be stored twice, and each doubles the rows of the join.
    std::set<std::string, std::less<>> listed;
    WebTable* list = nullptr;
    int category = 0;
    while (db.NextRow()) {
        if (!listed.emplace(db.Column(kPageName)).second) continue;
        if (list == nullptr || db.IntColumn(kCategory) != category) {
            category = db.IntColumn(kCategory);
            Add(new WebValue("<h5>%s Reports</h5>\n", HtmlText(CategoryName(db)).c_str()));
            list = &Adopt(new WebTable("class=\"reportList\" role=\"presentation\""));
        }
        AddReport(db, listUrl, *list);
    }
    if (list == nullptr) Add(new ReportNotice("No reports are available to you."));
}
