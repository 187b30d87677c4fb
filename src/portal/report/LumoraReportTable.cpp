#include "portal/report/LumoraReportTable.h"

#include <optional>

#include "common/Html.h"
#include "common/Log.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportGraphBuilder.h"
#include "portal/report/ReportDefinition.h"
#include "portal/report/ReportFacts.h"
#include "portal/report/ReportMessage.h"
#include "portal/report/ReportRows.h"
#include "portal/report/ReportTableWriter.h"

namespace {

ReportTableLayout LayoutOf(const ReportRun& run, const ReportLinks* links) {
    ReportTableLayout layout;
    layout.view = run.view;
    layout.links = links;
    layout.seriesTitle = run.definition.multititle;
    layout.seriesKeys = {run.definition.multikeyfield, run.definition.multikeyfield2};
    return layout;
}

// One a column of the definition.
std::vector<ReportCellLink> CellLinks(const LumoraReportSQLCol& columns,
                                      const std::vector<std::string_view>& names,
                                      const ReportLinks* links) {
    std::vector<ReportCellLink> cellLinks;
    for (const ReportColumn& column : MatchReportColumns(columns, names))
        cellLinks.emplace_back(links, column, names);
    return cellLinks;
}

std::string GrandTotal(const PortalContext& ctx, ReportDecimal sum) {
    std::string html = "<br/><hr align='right' width='20%'/><b>Grand Total: ";
    AppendHtmlText(html, ctx.currency.c_str());
    AppendReportDecimal(html, ReportStyle::kMoney, sum);
    return html + "</b>\n";
}

// The paragraphs of a report's help, folded away on the screen.
std::string HelpText(const UString& help, bool forPaper) {
    if (help.IsEmpty()) return "";
    std::string html = "<details class=\"reportHelp\"";
    html.append(forPaper ? " open" : "").append("><summary>How this report counts</summary>");
    std::string_view rest = help.c_str();
    while (!rest.empty()) {
        const size_t end = std::min(rest.find('\n'), rest.size());
        if (end > 0) {
            html += "<p>";
            AppendHtmlText(html, rest.substr(0, end));
            html += "</p>";
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return html + "</details>\n";
}

}  // namespace

LumoraReportTable::LumoraReportTable(const ReportRun& run, const ReportLinks* links)
    : forPaper_(run.view.form == ReportView::kPrint), graphOnly_(run.view.graphOnly) {
    if (run.columns.dropped() > 0) {
        UString text;
        text.Format("The column file of this report has %d columns; the first %d are shown.",
                    run.columns.count() + run.columns.dropped(), run.columns.count());
        ReportNotice(text.c_str()).Render(run.ctx, &spool_);
    }
    WriteResult(run, links);
}

LumoraReportTable::~LumoraReportTable() = default;

void LumoraReportTable::Render(WebContext& ctx, WebRender* out) {
    if (graph_ != nullptr && forPaper_)
        graph_->RenderImage(ctx, out);
    else if (graph_ != nullptr)
        graph_->Render(ctx, out);
    // Where there is nothing to draw, the table tells what there is.
    if (graph_ == nullptr || !graphOnly_) spool_.SendTo(*out);
}

void LumoraReportTable::WriteResult(const ReportRun& run, const ReportLinks* links) {
    std::optional<ReportTableWriter> table;
    try {
        ReportRows rows(run.ctx, run.query);
        table.emplace(run.columns, rows.names(), spool_, LayoutOf(run, links));
        ReportCallCounts counts(rows.names());
        LumoraReportGraphBuilder graph(run.columns, rows.names(), run.definition.format.c_str(),
                                       run.definition.multikeyfield.c_str());
        const std::vector<ReportCellLink> cellLinks = CellLinks(run.columns, rows.names(), links);
        graph.SetLinks([&](const LumoraSQLColumnDescription& column,
                           const std::vector<std::string_view>& row) {
            return cellLinks[&column - run.columns.columns()].Url(row);
        });
        std::vector<ReportRowReader*> readers = {&*table};
        if (counts.any()) readers.push_back(&counts);
        if (!run.view.tableOnly) readers.push_back(&graph);
        rows.Read(readers);
        table->Finish();
        if (!run.view.tableOnly) graph_ = graph.Build(run.ctx, run.definition.name.c_str());
        if (table->rows() == 0)
            ReportNotice("No calls were found for these criteria.").Render(run.ctx, &spool_);
        ReportDecimal sum;
        if (run.definition.HasFormat("money") && table->totals().GrandTotal(sum))
            spool_.Write(GrandTotal(run.ctx, sum));
        WriteNotes(run, counts.Text(), rows.cost().seconds(), rows.cost().rowsRead());
    } catch (const char* message) {
        if (table) table->BreakOff();
        LogError("Report %s: %s", run.definition.pagename.c_str(), message);
        ReportWarning(message).Render(run.ctx, &spool_);
    }
}

void LumoraReportTable::WriteNotes(const ReportRun& run, const std::string& counts, double seconds,
                                   uint64_t rowsRead) {
    const ReportDataAge age = ReportDataAge::Read(run.ctx);
    UString cost;
    cost.Format("The query took %.2f seconds and read %s rows. ", seconds,
                GroupedNumber(rowsRead).c_str());
    std::string html = "<div class=\"reportFacts\">";
    if (!counts.empty()) html.append("<p>").append(counts).append("</p>");
    html.append("<p>").append(cost.c_str());
    if (age.latest.empty())
        html += "No call is logged yet. ";
    else
        html += "The latest logged call began at " + age.latest + ", " + age.AgeText() +
                " before this report. ";
    html += "Days and times are those of ";
    AppendHtmlText(html, run.ctx.zoneName.c_str());
    html += " by the database server's clock, which showed " + age.now + ".</p></div>\n";
    spool_.Write(html);
    spool_.Write(HelpText(run.definition.help, forPaper_));
}
