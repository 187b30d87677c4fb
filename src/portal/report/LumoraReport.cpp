#include "portal/report/LumoraReport.h"

#include <utility>

#include "cgiFramework/QueryTiming.h"
#include "common/Html.h"
#include "common/Log.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/LumoraReportQuery.h"
#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/LumoraReportTable.h"
#include "portal/report/ReportDefinition.h"
#include "portal/report/ReportFile.h"
#include "portal/report/ReportLinks.h"
#include "portal/report/ReportMessage.h"

namespace {

void AddCriterion(std::vector<ReportCriterion>& criteria, const char* label, const UString& value) {
    if (value.IsEmpty()) return;
    // Parts of it come from SQL, with blanks around them.
    std::string text = value.c_str();
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
    criteria.push_back({label, text});
}

std::vector<ReportCriterion> CriteriaOf(const UString& name, const LumoraReportQuery& query,
                                        const UString& filteredOn) {
    std::vector<ReportCriterion> criteria = {{"Report", name.c_str()}};
    AddCriterion(criteria, "For", query.GetEntityName());
    AddCriterion(criteria, "Dates", query.GetDateTitle());
    AddCriterion(criteria, "Time Filter", query.GetTimeTitle());
    AddCriterion(criteria, "Filtered on", filteredOn);
    return criteria;
}

}  // namespace

LumoraReport::LumoraReport(PortalContext& ctx, const ReportDefinition& definition,
                           const LumoraReportFilter& filter) {
    const char* benchmarkLog = ctx.GetSetting("benchmarklog");
    if (*benchmarkLog != '\0') OpenBenchmarkLog(benchmarkLog);
    const LumoraReportSQLCol columns(ctx.dirname.c_str(), definition.reportFile.c_str());
    view_ = ReportView(ctx, columns);
    columnCount_ = columns.count();
    const LumoraReportQuery query(ctx, definition.query.c_str(), filter);
    UString filteredOn;
    if (definition.fieldFile.IsEmpty()) {
        filter.GetHeader(ctx, columns.columns(), filteredOn);
    } else {
        const LumoraReportSQLCol fields(ctx.dirname.c_str(), definition.fieldFile.c_str());
        filter.GetHeader(ctx, fields.columns(), filteredOn);
    }
    const UString& calls = query.GetCallTitle();
    if (!calls.IsEmpty()) filteredOn += (filteredOn.IsEmpty() ? "" : " / ") + calls;
    criteria_ = CriteriaOf(definition.name, query, filteredOn);
    AddHeader();

    const std::string statement = view_.Sorted(query.GetQuery(), columns, definition);
    const ReportRun run = {ctx, definition, columns, view_, statement};
    if (view_.form == ReportView::kCsv || view_.form == ReportView::kXlsx) {
        MakeFile(run);
        return;
    }
    // A wallboard's day is in no criterion of the request: links name the moments.
    const bool wallboard = !query.GetFilter().wbDrill.IsEmpty();
    const ReportLinks links(ctx, definition, wallboard ? query.GetFilter() : filter, view_);
    const bool onScreen = view_.form == ReportView::kScreen;
    if (onScreen) AddLinks(links.here());
    Add(new LumoraReportTable(run, onScreen ? &links : nullptr));
}

LumoraReport::~LumoraReport() = default;

void LumoraReport::AddHeader() {
    WebItem& header = Adopt(new WebDiv("class=\"reportHeader\""));
    for (const auto& [label, value] : criteria_) {
        const bool isName = &label == &criteria_.front().label;
        const char* element = isName || label == "For" ? "h3" : "h4";
        header.Adopt(new WebDiv("class=\"headerLine\""))
            .Add(new WebValue("<%s style=\"display:inline\">%s%s%s</%s>", element,
                              isName ? "" : label.c_str(), isName ? "" : ": ",
                              HtmlText(value.c_str()).c_str(), element));
    }
}

void LumoraReport::MakeFile(const ReportRun& run) {
    try {
        file_ = std::make_unique<ReportFile>(run, criteria_);
    } catch (const char* message) {
        LogError("Report %s: %s", run.definition.pagename.c_str(), message);
        Add(new ReportWarning(message));
    }
}

std::unique_ptr<FilePage> LumoraReport::TakeFile() {
    return std::move(file_);
}

// The same result for paper and as files, each in a window of its own.
void LumoraReport::AddLinks(const std::string& here) {
    const struct {
        const char* argument;
        const char* image;
        const char* title;
    } kForms[] = {
        {"print", "printer.png", "Printable page"},
        {"csv", "csv.png", "Download as CSV"},
        {"xlsx", "xlsx.png", "Download as XLSX"},
    };
    WebItem& exports = Adopt(new WebDiv("class=\"reportExports\""));
    for (const auto& form : kForms) {
        UString attributes;
        attributes.Format("href=\"%s&amp;%s=true\" target=\"_blank\" rel=\"noopener\"",
                          HtmlAttr(here.c_str()).c_str(), form.argument);
        exports.Adopt(new WebLink(attributes.c_str()))
            .Add(new WebValue("<img src=\"Images/calllog/%s\" width=\"16\" height=\"16\" alt=\"\"> "
                              "%s",
                              form.image, form.title));
    }
}
