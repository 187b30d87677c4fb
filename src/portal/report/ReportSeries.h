// ReportSeries.h: neighbouring rows that belong together in a report of several series.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/UStringX.h"

// Rows whose key columns have the same values, one after the other, form a series.
class ReportSeries {
  public:
    // `keys` are result columns; empty ones do not count, and without any there are no series. A
    // key that the result lacks throws a text that names it. `title` stands before the keys'
    // values.
    ReportSeries(const UString& title, const std::vector<UString>& keys,
                 const std::vector<std::string_view>& names);

    bool any() const { return !keys_.empty(); }
    // Takes the next row: does it begin a series?
    bool Begins(const std::vector<std::string_view>& row);
    // The present series' heading as plain text: "Department: Sales".
    std::string Title() const;
    // The keys' positions in the result.
    std::vector<int> fields() const;
    // What stands before their values; may be empty.
    const std::string& heading() const { return title_; }

  private:
    struct Key {
        int field;
        std::string value;
    };
    std::string title_;
    std::vector<Key> keys_;
    bool begun_ = false;
};
