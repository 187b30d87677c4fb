#include "portal/report/ReportEstimate.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "common/Parse.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportQuery.h"
#include "portal/report/ReportCell.h"

namespace {

constexpr int64_t kUsualLimit = 5'000'000;
constexpr double kMostRows = 1e15;

// Of the call log, with its conditions and sums, on one core of a usual server.
constexpr double kRowsASecond = 1'000'000;

constexpr double kMillion = 1'000'000;
constexpr int kMinute = 60;

// Columns of EXPLAIN by name: their places differ between kinds of plan.
struct PlanColumns {
    int id = -1;
    int table = -1;
    int rows = -1;
    int filtered = -1;

    explicit PlanColumns(const SQLSession& db) {
        for (int i = 0; i < db.ColumnCount(); ++i) {
            const char* name = db.ColumnName(i);
            if (strcmp(name, "id") == 0) id = i;
            if (strcmp(name, "table") == 0) table = i;
            if (strcmp(name, "rows") == 0) rows = i;
            if (strcmp(name, "filtered") == 0) filtered = i;
        }
    }
    bool complete() const { return id >= 0 && table >= 0 && rows >= 0 && filtered >= 0; }
};

// Names like <derived2> and <union1,2> are results of other SELECTs, and the numbers of a table
// like seq_0_to_3 are counted, not stored.
bool IsMade(std::string_view table) {
    return table.starts_with('<') || table.starts_with("seq_");
}

uint64_t ReadPlan(SQLSession& db) {
    const PlanColumns column(db);
    PlanRows plan;
    while (column.complete() && db.NextRow()) {
        if (db.IsNull(column.rows)) continue;
        plan.Add({db.IntColumn(column.id), IsMade(db.Column(column.table)),
                  strtod(db.Column(column.rows), nullptr),
                  strtod(db.Column(column.filtered), nullptr)});
    }
    return plan.rows();
}

std::string Rounded(double number) {
    char text[32];
    snprintf(text, sizeof text, number < 10 ? "%.1f" : "%.0f", number);
    return text;
}

std::string Counted(int64_t number, const char* unit) {
    return std::to_string(number) + " " + unit + (number == 1 ? "" : "s");
}

}  // namespace

void PlanRows::Add(const PlannedTable& table) {
    if (table.select != select_) given_ = 1;
    select_ = table.select;
    const double read = std::fmin(given_ * table.rows, kMostRows);
    if (!table.derived) rows_ = std::fmin(rows_ + read, kMostRows);
    // A table that leaves less than a row is still asked for the next one's.
    given_ = std::fmax(read * table.filtered / 100, 1);
}

uint64_t PlanRows::rows() const {
    return static_cast<uint64_t>(rows_);
}

uint64_t EstimateRows(PortalContext& ctx, const LumoraReportQuery& query) {
    try {
        SQLSession db(ctx.GetSQLSession());
        db.Query(SqlText::FromTemplate("EXPLAIN EXTENDED " + query.GetQuery()));
        return ReadPlan(db);
    } catch (const char*) {
        return 0;
    }
}

uint64_t WarningLimit(const PortalContext& ctx) {
    int64_t limit = kUsualLimit;
    const char* setting = ctx.GetSetting("reportWarnRows");
    if (IsDigits(setting, 1, 18) && ParseInt64(setting, limit)) return static_cast<uint64_t>(limit);
    return static_cast<uint64_t>(kUsualLimit);
}

UString EstimateText(uint64_t rows) {
    const double count = static_cast<double>(rows);
    const auto seconds = static_cast<int64_t>(std::ceil(count / kRowsASecond));
    std::string text = "about ";
    text += count < kMillion ? GroupedNumber(rows) : Rounded(count / kMillion) + " million";
    text += rows == 1 ? " row, about " : " rows, about ";
    text += seconds < 2 * kMinute ? Counted(seconds, "second")
                                  : Counted((seconds + kMinute / 2) / kMinute, "minute");
    return UString(text.c_str());
}
