#include "portal/report/LumoraReport.h"

#include <string_view>
#include <utility>

#include "common/Html.h"
#include "common/Log.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/LumoraReportQuery.h"
#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/LumoraReportTable.h"
#include "portal/report/ReportDefinition.h"
#include "portal/report/ReportDrill.h"
#include "portal/report/ReportFile.h"
#include "portal/report/ReportLinks.h"
#include "portal/report/ReportMessage.h"

namespace {

// Parts of the texts come from SQL, with blanks around them.
std::string Trimmed(const UString& text) {
    std::string trimmed = text.c_str();
    trimmed.erase(0, trimmed.find_first_not_of(' '));
    trimmed.erase(trimmed.find_last_not_of(' ') + 1);
    return trimmed;
}

void AddHeaderLine(WebItem& header, WebValue* line) {
    header.Adopt(new WebDiv("class=\"headerLine\"")).Add(line);
}

// `image` shows the form; both stand in a link of their own window.
void AddLink(WebItem& exports, const UString& url, const char* image, const char* caption) {
    UString attributes;
    attributes.Format("href=\"%s\" target=\"_blank\" rel=\"noopener\"",
                      HtmlAttr(url.c_str()).c_str());
    exports.Adopt(new WebLink(attributes.c_str()))
        .Add(new WebValue("<img src=\"%s\" width=\"16\" height=\"16\" alt=\"\"> %s", image,
                          caption));
}

}  // namespace

LumoraReport::LumoraReport(PortalContext& ctx, const ReportDefinition& definition,
                           const LumoraReportFilter& filter, const LumoraReportQuery& query) {
    const LumoraReportSQLCol columns(ctx.dirname.c_str(), definition.reportFile.c_str());
    view_ = ReportView(ctx, columns);
    columnCount_ = columns.count();
    UString filteredOn;
    std::string row;
    if (definition.fieldFile.IsEmpty()) {
        filter.GetHeader(ctx, columns.columns(), filteredOn);
    } else {
        const LumoraReportSQLCol fields(ctx.dirname.c_str(), definition.fieldFile.c_str());
        filter.GetHeader(ctx, fields.columns(), filteredOn);
        row = DrillRow(ctx);
    }
    const UString& calls = query.GetCallTitle();
    if (!calls.IsEmpty()) filteredOn += (filteredOn.IsEmpty() ? "" : " / ") + calls;
    AddHeader(definition.name, query, filteredOn, row);

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
    if (onScreen) AddLinks(links.here().c_str());
    Add(new LumoraReportTable(run, onScreen ? &links : nullptr));
}

LumoraReport::~LumoraReport() = default;

void LumoraReport::AddHeader(const UString& name, const LumoraReportQuery& query,
                             const UString& filteredOn, const std::string& row) {
    const std::pair<std::string_view, UString> lines[] = {{"Report", name},
                                                          {"For", query.GetEntityName()},
                                                          {"Dates", query.GetDateTitle()},
                                                          {"Time Filter", query.GetTimeTitle()},
                                                          {"Filtered on", filteredOn},
                                                          {"Row", row.c_str()}};
    WebItem& header = Adopt(new WebDiv("class=\"reportHeader\""));
    for (const auto& [label, value] : lines) {
        const std::string told = Trimmed(value);
        if (told.empty()) continue;
        criteria_.push_back({label.data(), told});
        const UString html = HtmlText(value.c_str());
        const char* text = html.c_str();
        if (label == "Report")
            AddHeaderLine(header, new WebValue("<h3 style=\"display:inline\">%s</h3>", text));
        else if (label == "For")
            AddHeaderLine(header, new WebValue("<h3 style=\"display:inline\">For: %s</h3>", text));
        else if (label == "Dates")
            AddHeaderLine(header,
                          new WebValue("<h4 style=\"display:inline\">Dates: %s</h4>", text));
        else if (label == "Time Filter")
            AddHeaderLine(header,
                          new WebValue("<h4 style=\"display:inline\">Time Filter: %s</h4>", text));
        else if (label == "Filtered on")
            AddHeaderLine(header,
                          new WebValue("<h4 style=\"display:inline\">Filtered on: %s</h4>", text));
        else
            AddHeaderLine(header, new WebValue("<h4 style=\"display:inline\">Row: %s</h4>", text));
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

// The same result for paper and as files.
void LumoraReport::AddLinks(const char* here) {
    WebItem& exports = Adopt(new WebDiv("class=\"reportExports\""));
    UString url;
    url.Format("%s&print=true", here);
    AddLink(exports, url, "Images/calllog/printer.png", "Printable page");
    url.Format("%s&csv=true", here);
    AddLink(exports, url, "Images/calllog/csv.png", "Download as CSV");
    url.Format("%s&xlsx=true", here);
    AddLink(exports, url, "Images/calllog/xlsx.png", "Download as XLSX");
}
