// ReportTotals.h: the totals below a report's columns, worked out from the raw values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/ReportCell.h"
#include "portal/report/ReportRowReader.h"

// Sums exactly while the rows go by:
//   sum      the sum of the column
//   count    the number of rows
//   avg      sum of `avgfield` / sum of `percentdiv`
//   percent  the same in hundredths
// The two fields may be result columns that are not shown. Values that are no numbers, and nulls,
// add nothing.
class ReportTotals : public ReportRowReader {
  public:
    // `names` are the result's columns. An unknown total type, or a field that the result lacks,
    // throws a text that names it.
    ReportTotals(const LumoraReportSQLCol& columns, const std::vector<std::string_view>& names);

    // Is there a column with a total?
    bool any() const { return any_; }
    // Has this column of the definition a total?
    bool Has(int column) const { return totals_[column].kind != kNone; }
    void AddRow(const std::vector<std::string_view>& row) override;
    // Begins anew, without rows.
    void Clear();
    // Appends the total of a column of the definition; "-" where it would divide by zero.
    void Append(std::string& out, int column, ReportStyle style) const;
    // The sum below the last column of money that is summed up; false when there is none.
    bool GrandTotal(ReportDecimal& sum) const;

  private:
    enum Kind { kNone, kSum, kCount, kAverage, kPercent };
    struct Total {
        Kind kind = kNone;
        int value = -1;  // positions in sums_
        int divisor = -1;
    };
    struct Sum {
        int field;  // of the result
        ReportDecimal value;
    };

    int SumOf(const std::vector<std::string_view>& names, const char* column, const char* field);

    std::vector<Total> totals_;  // one a column of the definition
    std::vector<Sum> sums_;      // one a result column that any total needs
    int64_t rows_ = 0;
    bool any_ = false;
    int grandTotal_ = -1;  // position in sums_
};
