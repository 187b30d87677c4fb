#include "portal/report/LumoraReportTable.h"

#include <optional>
#include <utility>

#include "common/Log.h"
#include "portal/background/BackgroundRender.h"
#include "portal/context/PortalContext.h"
#include "portal/report/ReportMessage.h"
#include "portal/report/ReportSpool.h"
#include "portal/report/ReportTableWriter.h"

namespace {

std::vector<std::string_view> ColumnNames(const SQLSession& cursor) {
    std::vector<std::string_view> names;
    for (int i = 0; i < cursor.ColumnCount(); ++i)
        names.emplace_back(cursor.ColumnName(i));
    return names;
}

void WriteRows(SQLSession& cursor, ReportTableWriter& table, const WebRender& out) {
    std::vector<std::string_view> row(cursor.ColumnCount());
    while (!out.Closed() && cursor.NextRow()) {
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = cursor.View(static_cast<int>(i));
        table.AddRow(row);
        CountBackgroundRows(table.rows());
    }
}

}  // namespace

LumoraReportTable::LumoraReportTable(PortalContext& ctx, const char* reportName, std::string query,
                                     std::unique_ptr<const LumoraReportSQLCol> columns)
    : portal_(ctx),
      reportName_(reportName),
      query_(std::move(query)),
      columns_(std::move(columns)) {}

LumoraReportTable::~LumoraReportTable() = default;

void LumoraReportTable::Run(WebContext& ctx) {
    spool_ = std::make_unique<ReportSpool>();
    WriteResult(ctx, *spool_);
}

void LumoraReportTable::Render(WebContext& ctx, WebRender* out) {
    if (spool_ != nullptr) {
        spool_->SendTo(*out);
        return;
    }
    // The browser shows title and criteria while the server works.
    out->Flush();
    WriteResult(ctx, *out);
}

void LumoraReportTable::WriteResult(WebContext& ctx, WebRender& out) {
    std::optional<ReportTableWriter> table;
    try {
        SQLSession cursor(portal_.GetSQLSession());
        cursor.Stream(SqlText::FromTemplate(query_));
        table.emplace(*columns_, ColumnNames(cursor), out);
        WriteRows(cursor, *table, out);
        table->Finish();
        if (table->rows() == 0)
            ReportNotice("No calls were found for these criteria.").Render(ctx, &out);
    } catch (const char* message) {
        if (table) table->BreakOff();
        LogError("Report %s: %s", reportName_.c_str(), message);
        ReportWarning(message).Render(ctx, &out);
    }
}
