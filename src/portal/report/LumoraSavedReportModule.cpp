#include "portal/report/LumoraSavedReportModule.h"

#include "cgiFramework/UrlArgument.h"
#include "common/Html.h"
#include "common/Parse.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/ReportDefinition.h"

namespace {

constexpr char kQuickReportsSql[] =
    "SELECT name, url, id FROM CallReportQuickReport WHERE customerid='%s' AND contactid='%s' "
    "ORDER BY name";
enum { kName, kUrl, kId };
constexpr char kInsertSql[] =
    "INSERT INTO CallReportQuickReport (customerId,ContactId,url,name) VALUES "
    "('%i','%i','%s','%s')";
constexpr char kDeleteSql[] =
    "DELETE FROM CallReportQuickReport WHERE customerid='%s' AND contactid='%s' and id='%s'";

// The page's security policy allows the handler by its hash (StandardPage.cpp).
constexpr char kEntry[] =
    "<div style=''><a href='%s&report=%s&id=%s&removeQReport=true' "
    "onclick=\"return confirm('Are you sure you want to remove this quick report ?')\">"
    "<img height=\"12\" width=\"12\" src=\"Images/calllog/remove.png\" "
    "alt=\"Remove this quick report\" title=\"Remove this quick report\"></a> "
    "<a href=\"%s&%s\">%s</a></div>\n";

constexpr char kNotGenuine[] = "Your session has only just begun, so nothing was changed.";
constexpr size_t kMostName = 255;   // characters, as the column takes
constexpr size_t kMostUrl = 65535;  // bytes

// The text without blanks at its ends, cut behind as many characters as the column takes.
std::string TidyName(std::string_view text) {
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    size_t end = 0;
    for (size_t characters = 0; end < text.size(); ++end) {
        const bool begins = (text[end] & 0xC0) != 0x80;
        if (begins && ++characters > kMostName) break;
    }
    return std::string(text.substr(0, end));
}

bool IsKept(PortalContext& ctx, const std::string& name, const std::string& url) {
    SQLSession db(ctx.GetSQLSession());
    db.Query(
        SqlText(kQuickReportsSql, SqlQuoted(ctx.customerIdString), SqlQuoted(ctx.contactIdString)));
    while (db.NextRow())
        if (db.View(kName) == name && db.View(kUrl) == url) return true;
    return false;
}

UString Told(const char* before, const std::string& name, const char* after) {
    return UString((before + name + after).c_str());
}

}  // namespace

LumoraSavedReportModule::LumoraSavedReportModule(PortalContext& ctx, const char* report)
    : WebDiv("class=\"modulelight\"") {
    Add(new WebValue("<h2>Quick Reports</h2>\n"));
    WebItem& area =
        Adopt(new WebDiv("class=\"quickReports\" %s", "style='overflow:scroll; height: 200px;'"));
    const UString base = HtmlAttr(ctx.GetURL("pagename=callreport"));
    std::string reportName;
    AppendUrlValue(reportName, report);

    SQLSession db(ctx.GetSQLSession());
    db.Query(
        SqlText(kQuickReportsSql, SqlQuoted(ctx.customerIdString), SqlQuoted(ctx.contactIdString)));
    while (db.NextRow()) {
        any_ = true;
        area.Add(new WebValue(kEntry, base.c_str(), reportName.c_str(), db.Column(kId),
                              base.c_str(), HtmlAttr(db.Column(kUrl)).c_str(),
                              HtmlText(db.Column(kName)).c_str()));
    }
}

const char* RemoveQuickReport(PortalContext& ctx) {
    if (std::string_view(ctx.ArgumentText("removeQReport")) != "true") return nullptr;
    const char* id = ctx.ArgumentText("id");
    if (!IsDigits(id, 1, 10)) return nullptr;
    if (!ctx.MayChange()) return kNotGenuine;
    SQLSession(ctx.GetSQLSession())
        .Execute(SqlText(kDeleteSql, SqlQuoted(ctx.customerIdString),
                         SqlQuoted(ctx.contactIdString), SqlQuoted(id)));
    return "The quick report was removed.";
}

UString SaveQuickReport(PortalContext& ctx, const ReportDefinition& definition,
                        const LumoraReportFilter& filter) {
    if (!IsTicked(ctx.ArgumentText("save"))) return "";
    std::string name = TidyName(ctx.ArgumentText("savedReportDesc"));
    if (name.empty()) name = definition.name.c_str();

    UString url("report=");
    url.AppendSafe(definition.pagename.c_str());
    filter.AppendArguments(url);
    url += "&submit=Generate%20Report";
    const std::string address(url.c_str());
    if (address.size() > kMostUrl) return "These criteria are too long to be kept.";
    if (!ctx.MayChange())
        return Told("Your session has only just begun, so \"", name,
                    "\" was not saved. Run the report again to save it.");
    if (!IsKept(ctx, name, address))
        SQLSession(ctx.GetSQLSession())
            .Execute(SqlText(kInsertSql, ctx.customerId, ctx.contactId, SqlQuoted(address.c_str()),
                             SqlQuoted(name.c_str())));
    return Told("Saved among your quick reports as \"", name, "\".");
}
