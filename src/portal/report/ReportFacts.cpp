#include "portal/report/ReportFacts.h"

#include <chrono>

#include "portal/context/PortalContext.h"
#include "portal/report/ReportColumns.h"

namespace {

constexpr char kRowsReadSql[] = "SHOW SESSION STATUS LIKE 'Rows_read'";
enum { kStatusName, kStatusValue };

// One look at the end of each customer's part of the primary key.
constexpr char kLatestSql[] =
    "SELECT NOW(), MAX(latest), TIMESTAMPDIFF(SECOND, MAX(latest), NOW()) FROM "
    "(SELECT customerid, MAX(gmtdatetime) AS latest FROM CallLog WHERE customerid IN('%s') "
    "GROUP BY customerid) AS each_customer";
enum { kNow, kLatest, kAge };

constexpr int64_t kMicrosPerSecond = 1'000'000;

int64_t Now() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

void AppendCounted(std::string& text, ReportDecimal count, const char* one, const char* many) {
    if (!text.empty()) text += ", ";
    const auto number = static_cast<uint64_t>(count.units / ReportDecimal::kScale);
    text += GroupedNumber(number);
    text.append(" ").append(number == 1 ? one : many);
}

}  // namespace

ReportCallCounts::ReportCallCounts(const std::vector<std::string_view>& names)
    : calls_{FindResultColumn(names, "n_calls"), {}},
      legs_{FindResultColumn(names, "n_legs"), {}},
      transfers_{FindResultColumn(names, "n_transfers"), {}} {}

void ReportCallCounts::AddRow(const std::vector<std::string_view>& row) {
    ReportDecimal value;
    for (Count* count : {&calls_, &legs_, &transfers_})
        if (count->field >= 0 && ParseReportDecimal(row[count->field], value))
            count->sum.units += value.units;
}

std::string ReportCallCounts::Text() const {
    std::string text;
    if (calls_.field < 0) return text;
    AppendCounted(text, calls_.sum, "call", "calls");
    if (legs_.field >= 0 && legs_.sum.units != calls_.sum.units)
        AppendCounted(text, legs_.sum, "leg", "legs");
    if (transfers_.field >= 0 && transfers_.sum.units != 0)
        AppendCounted(text, transfers_.sum, "transfer", "transfers");
    return text;
}

ReportQueryCost::ReportQueryCost(PortalContext& ctx)
    : ctx_(ctx), start_(0), rowsRead_(ReadRowsRead()) {
    start_ = Now();
}

void ReportQueryCost::Finish() {
    seconds_ = static_cast<double>(Now() - start_) / kMicrosPerSecond;
    rowsRead_ = ReadRowsRead() - rowsRead_;
}

uint64_t ReportQueryCost::ReadRowsRead() const {
    SQLSession db(ctx_.GetSQLSession());
    db.Query(SqlText(kRowsReadSql));
    return db.NextRow() ? strtoull(db.Column(kStatusValue), nullptr, 10) : 0;
}

ReportDataAge ReportDataAge::Read(PortalContext& ctx) {
    ReportDataAge age;
    SQLSession db(ctx.GetSQLSession());
    // The group was read as ids, and is made to stand between these quotes.
    db.Query(SqlText(kLatestSql, SqlFragment(ctx.GetCustomerSearchGroup())));
    if (!db.NextRow()) return age;
    age.now = db.Column(kNow);
    age.latest = db.Column(kLatest);
    age.seconds = strtoll(db.Column(kAge), nullptr, 10);
    return age;
}

std::string ReportDataAge::AgeText() const {
    constexpr struct {
        int64_t seconds;
        const char* name;
    } kUnits[] = {{86400, "day"}, {3600, "hour"}, {60, "minute"}, {1, "second"}};
    for (const auto& unit : kUnits) {
        // Below two of a unit the next smaller one tells more.
        if (seconds < 2 * unit.seconds && unit.seconds > 1) continue;
        const int64_t count = seconds < 0 ? 0 : seconds / unit.seconds;
        return GroupedNumber(static_cast<uint64_t>(count)) + " " + unit.name +
               (count == 1 ? "" : "s");
    }
    return "";
}
