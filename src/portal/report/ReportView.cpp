#include "portal/report/ReportView.h"

#include <strings.h>

#include <algorithm>

#include "cgiFramework/WebContext.h"
#include "common/Parse.h"
#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/ReportDefinition.h"

namespace {

constexpr int64_t kMostPages = 1'000'000'000;

ReportView::Form FormOf(const WebContext& ctx) {
    if (ctx.IsArgumentGiven("csv")) return ReportView::kCsv;
    if (ctx.IsArgumentGiven("xlsx")) return ReportView::kXlsx;
    return ctx.IsArgumentGiven("print") ? ReportView::kPrint : ReportView::kScreen;
}

uint64_t RowsOf(const WebContext& ctx, uint64_t usual) {
    const std::string_view text = ctx.ArgumentText("rows");
    if (text == "all") return ReportView::kAllRows;
    for (const uint64_t rows : kRowsAPage)
        if (text == std::to_string(rows)) return rows;
    return usual;
}

// A name as SQL quotes it.
std::string Identifier(const char* name) {
    std::string quoted = "`";
    for (; *name != '\0'; ++name) {
        if (*name == '`') quoted += '`';
        quoted += *name;
    }
    return quoted + '`';
}

}  // namespace

const std::vector<uint64_t> kRowsAPage = {100, 500, 1000};

ReportView::ReportView(const WebContext& ctx, const LumoraReportSQLCol& columns)
    : form(FormOf(ctx)),
      sort(ctx.ArgumentText("sort")),
      descending(strcmp(ctx.ArgumentText("dir"), "desc") == 0),
      criteria(ctx.IsArgumentGiven("criteria")),
      graphOnly(ctx.IsArgumentGiven("graphonly")),
      tableOnly(ctx.IsArgumentGiven("tableonly")) {
    if (SortColumn(columns) == nullptr) sort = "";
    rows = form == kScreen ? RowsOf(ctx, rows) : kAllRows;
    int64_t number = 0;
    if (rows != kAllRows && ParseInt64(ctx.ArgumentText("page"), number) && number > 0)
        page = static_cast<uint64_t>(std::min(number, kMostPages));
}

const LumoraSQLColumnDescription* ReportView::SortColumn(const LumoraReportSQLCol& columns) const {
    for (const LumoraSQLColumnDescription& column : columns)
        if (strcasecmp(column.fieldname, sort.c_str()) == 0) return &column;
    return nullptr;
}

std::string ReportView::Sorted(std::string query, const LumoraReportSQLCol& columns,
                               const ReportDefinition& definition) const {
    const LumoraSQLColumnDescription* column = SortColumn(columns);
    if (column == nullptr) return query;
    std::string order;
    for (const UString* key : {&definition.multikeyfield, &definition.multikeyfield2})
        if (!key->IsEmpty()) order.append(Identifier(key->c_str())).append(", ");
    order += Identifier(column->fieldname);
    if (descending) order += " DESC";
    if (column != columns.begin())
        order.append(", ").append(Identifier(columns.begin()->fieldname));
    return "SELECT * FROM (" + std::move(query) + "\n) AS report ORDER BY " + order;
}
