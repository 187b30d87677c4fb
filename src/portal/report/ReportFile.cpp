#include "portal/report/ReportFile.h"

#include <utility>

#include "common/Path.h"
#include "portal/context/PortalContext.h"
#include "portal/report/ReportCsvWriter.h"
#include "portal/report/ReportDefinition.h"
#include "portal/report/ReportFacts.h"
#include "portal/report/ReportRows.h"
#include "portal/report/ReportSeries.h"
#include "portal/report/ReportView.h"
#include "portal/report/ReportXlsxWriter.h"

namespace {

constexpr char kXlsxType[] = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet";
constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

std::vector<ReportFileColumn> ColumnsOf(const ReportRun& run, const ReportRows& rows) {
    const ReportDefinition& definition = run.definition;
    const ReportSeries series(definition.multititle,
                              {definition.multikeyfield, definition.multikeyfield2}, rows.names());
    return MatchFileColumns(run.columns, rows.names(), series);
}

}  // namespace

ReportFile::ReportFile(const ReportRun& run, std::vector<ReportCriterion> criteria) {
    criteria.push_back({"Time zone", run.ctx.zoneName.c_str()});
    if (run.view.form == ReportView::kCsv)
        WriteCsv(run, criteria);
    else
        WriteXlsx(run, std::move(criteria));
}

// What file systems do not take in a name, or take for a folder, is left out; FilePage leaves out
// what would end the header line.
void ReportFile::SetName(const ReportRun& run, const char* extension) {
    std::string name;
    for (const char* c = run.definition.name.c_str(); *c != '\0'; ++c)
        if (*c != '/' && *c != '\\') name += *c;
    SetDisplayName((name + extension).c_str());
}

void ReportFile::WriteCsv(const ReportRun& run, const std::vector<ReportCriterion>& criteria) {
    SetContentType("text/csv");
    SetName(run, ".csv");
    ReportRows rows(run.ctx, run.query);
    ReportCsvWriter csv(ColumnsOf(run, rows), spool_);
    if (run.view.criteria) {
        for (const ReportCriterion& criterion : criteria)
            csv.AddLine(criterion.label, criterion.value);
        csv.AddEmptyLine();
    }
    csv.AddHeadings();
    rows.Read({&csv});
    csv.Finish();
    hasMark_ = !csv.isAscii();
}

void ReportFile::WriteXlsx(const ReportRun& run, std::vector<ReportCriterion> criteria) {
    SetContentType(kXlsxType);
    SetName(run, ".xlsx");
    ReportRows rows(run.ctx, run.query);
    ReportXlsxWriter xlsx(ColumnsOf(run, rows), spool_.OpenForWriting().c_str(),
                          RootPath(ReportSpool::kFolder).c_str(), run.definition.name.c_str(),
                          run.ctx.zoneName.c_str());
    ReportCallCounts counts(rows.names());
    rows.Read({&xlsx, &counts});
    if (counts.any()) criteria.push_back({"Counted", counts.Text()});
    criteria.push_back({"Made at", ReportDataAge::Read(run.ctx).now});
    xlsx.Finish(criteria);
}

void ReportFile::RenderContent(WebRender& out) {
    if (hasMark_) out.Write(kByteOrderMark);
    spool_.SendTo(out);
}
