#include "portal/tabular/TabularReport.h"

#include "cgiFramework/Report.h"
#include "common/Html.h"
#include "portal/Dispatch.h"
#include "portal/context/ManagerContext.h"
#include "portal/theme/ListPage.h"
#include "portal/theme/StandardPage.h"

namespace {

constexpr char kNoRights[] = "Sorry you do not have rights for this";
constexpr char kMissing[] = "This entry does not exist.";

bool MayOpen(ManagerContext& ctx, const ReportAccess& access) {
    if (access.administrator && !ctx.isAdministrator()) return false;
    if (access.refused != 0 && CheckSecurityLevel(ctx, access.refused)) return false;
    return access.needs == 0 || CheckSecurityLevel(ctx, access.needs);
}

bool IsKnownType(const Report& report) {
    return report.type == "pdf" || report.type == "Table" || report.type == "Form";
}

// The list's rows are those of the customers whom the caller's searches span.
SQLTableDefinition CustomersRows(ManagerContext& ctx, const Report& report) {
    SQLTableDefinition table = report.detail.table;
    // Definitions are files of the administrator; the group is numbers that the context has joined.
    const SqlText own("%s IN ('%s')", SqlFragment(report.detail.customer),
                      SqlFragment(ctx.GetCustomerSearchGroup()));
    table.condition =
        table.condition.empty() ? own.c_str() : "(" + table.condition + ") AND " + own.c_str();
    return table;
}

WebItem* BuildReport(ManagerContext& ctx, const Report& report) {
    if (!MayOpen(ctx, report.detail.access))
        return MessagePage(ctx, report.detail.title.c_str(), kNoRights);
    if (!report.problem.empty()) {
        const std::string text = "The definition of this page is wrong: " + report.problem;
        return MessagePage(ctx, report.detail.title.c_str(), text.c_str());
    }
    if (report.type == "pdf") return ReportPDFPage(ctx, report);
    return report.type == "Table" ? TWReportPage(ctx, report) : TWReportDetailPage(ctx, report);
}

}  // namespace

WebItem* TWReportPage(ManagerContext& ctx, const Report& report) {
    std::vector<SQLListAction> actions;
    if (!report.detail.addLink.empty())
        actions.push_back({"Add", ctx.GetURL("%s", report.detail.addLink.c_str())});
    return AnswerList(ctx, CustomersRows(ctx, report), actions);
}

WebItem* TWReportDetailPage(ManagerContext& ctx, const Report& report) {
    SQLDetailDefinition form = report.detail.form;
    form.row.scope = {{report.detail.customer, ctx.customerIdString.c_str()}};
    std::string id = report.detail.rowId;
    if (id == "[customerId]") id = ctx.customerIdString.c_str();
    if (id.empty()) id = PostedText(ctx, "index");
    return AnswerDetail(ctx, std::move(form),
                        {report.detail.title, kMissing, report.detail.listLink}, id);
}

WebItem* ReportPDFPage(ManagerContext& ctx, const Report& report) {
    return AnswerListPdf(ctx, CustomersRows(ctx, report));
}

std::unique_ptr<WebItem> BuildTabularReport(ManagerContext& ctx, const char* name) {
    ReportBuildPages(ctx);
    const Report* chosen = nullptr;
    for (const OSListObj& entry : ctx.reports) {
        const auto& report = static_cast<const Report&>(entry);
        if (report.name == name && IsKnownType(report)) chosen = &report;
    }
    return std::unique_ptr<WebItem>(chosen != nullptr ? BuildReport(ctx, *chosen) : nullptr);
}

WebItem* BuildTabularIndex(ManagerContext& ctx) {
    auto page = std::make_unique<StandardPage>(ctx);
    page->title = "Lists and Forms";
    WebTable& list = page->Adopt(new WebTable("class=\"list\" role=\"presentation\""));
    bool any = false;
    ReportBuildPages(ctx);
    for (const OSListObj& entry : ctx.reports) {
        const auto& report = static_cast<const Report&>(entry);
        const bool opens = report.type != "Form" || !report.detail.rowId.empty();
        if (!IsKnownType(report) || !opens || !MayOpen(ctx, report.detail.access)) continue;
        any = true;
        UString href;
        href.Format("href=\"%s\"",
                    HtmlAttr(ctx.GetURL("pagename=%s", report.name.c_str())).c_str());
        WebRow& row = list.Adopt(new WebRow(""));
        row.Adopt(new WebCell(""))
            .Adopt(new WebLink(href.c_str()))
            .Add(new WebValue("%s%s", HtmlText(report.detail.title.c_str()).c_str(),
                              report.type == "pdf" ? " (PDF)" : ""));
        row.Adopt(new WebCell(""))
            .Add(new WebValue("%s", HtmlText(report.detail.description.c_str()).c_str()));
    }
    if (!any)
        page->Adopt(new WebDiv("class=\"notice\""))
            .Add(new WebValue("There are no lists or forms for you here."));
    return page.release();
}
