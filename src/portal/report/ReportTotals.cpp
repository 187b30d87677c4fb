#include "portal/report/ReportTotals.h"

#include "common/ThrowText.h"
#include "portal/report/ReportColumns.h"

namespace {

// value / divisor in parts of 1 / scale, half away from zero. The integer part is divided off
// first, so that the scaling cannot overflow.
ReportInteger Quotient(ReportInteger value, ReportInteger divisor, int scale) {
    const bool negative = (value < 0) != (divisor < 0);
    if (value < 0) value = -value;
    if (divisor < 0) divisor = -divisor;
    const ReportInteger rest = value % divisor * scale;
    const ReportInteger parts = value / divisor * scale + (rest + divisor / 2) / divisor;
    return negative ? -parts : parts;
}

}  // namespace

ReportTotals::ReportTotals(const LumoraReportSQLCol& columns,
                           const std::vector<std::string_view>& names) {
    for (const LumoraSQLColumnDescription& column : columns) {
        const std::string_view type = column.totaltype;
        Total total;
        if (type == "sum") {
            total.kind = kSum;
            total.value = SumOf(names, column.fieldname, column.fieldname);
            if (std::string_view(column.style) == ReportStyleName(ReportStyle::kMoney))
                grandTotal_ = total.value;
        } else if (type == "count") {
            total.kind = kCount;
        } else if (type == "avg" || type == "percent") {
            total.kind = type == "avg" ? kAverage : kPercent;
            total.value = SumOf(names, column.fieldname, column.avgfield);
            total.divisor = SumOf(names, column.fieldname, column.percentdiv);
        } else if (!type.empty()) {
            ThrowText("Column \"%s\" of this report has the unknown total \"%s\".",
                      column.fieldname, column.totaltype);
        }
        any_ = any_ || total.kind != kNone;
        totals_.push_back(total);
    }
}

int ReportTotals::SumOf(const std::vector<std::string_view>& names, const char* column,
                        const char* field) {
    const int position = FindResultColumn(names, field);
    if (position < 0)
        ThrowText(
            "The total of column \"%s\" needs the field \"%s\", which this report's query "
            "does not return.",
            column, field);
    for (size_t i = 0; i < sums_.size(); ++i)
        if (sums_[i].field == position) return static_cast<int>(i);
    sums_.push_back({position, {}});
    return static_cast<int>(sums_.size()) - 1;
}

void ReportTotals::AddRow(const std::vector<std::string_view>& row) {
    ++rows_;
    ReportDecimal value;
    for (Sum& sum : sums_)
        if (ParseReportDecimal(row[sum.field], value)) sum.value.units += value.units;
}

void ReportTotals::Clear() {
    rows_ = 0;
    for (Sum& sum : sums_)
        sum.value = {};
}

bool ReportTotals::GrandTotal(ReportDecimal& sum) const {
    if (grandTotal_ < 0) return false;
    sum = sums_[grandTotal_].value;
    return true;
}

void ReportTotals::Append(std::string& out, int column, ReportStyle style) const {
    const Total& total = totals_[column];
    switch (total.kind) {
        case kNone:
            return;
        case kSum:
            AppendReportDecimal(out, style, sums_[total.value].value);
            return;
        case kCount:
            out += std::to_string(rows_);
            return;
        case kAverage:
        case kPercent:
            break;
    }
    const ReportInteger divisor = sums_[total.divisor].value.units;
    if (divisor == 0) {
        out += '-';
        return;
    }
    const int factor = total.kind == kPercent ? 100 : 1;
    // Numbers are shown with all their decimals, of which an average has one.
    const int scale = style == ReportStyle::kNumber ? 10 : ReportDecimal::kScale;
    const ReportInteger parts = Quotient(sums_[total.value].value.units * factor, divisor, scale);
    AppendReportDecimal(out, style, {parts * (ReportDecimal::kScale / scale)});
}
