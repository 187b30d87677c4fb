// ReportRowReader.h: whoever wants to see the rows of a report while they come from the server.
#pragma once

#include <string_view>
#include <vector>

class ReportRowReader {
  public:
    virtual ~ReportRowReader() = default;
    // Takes a row in the result's order, raw as the server sent it. A null value is a view without
    // data. The views live until the next row.
    virtual void AddRow(const std::vector<std::string_view>& row) = 0;
};
