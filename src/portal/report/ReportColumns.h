// ReportColumns.h: a definition's columns, found in the result of its query.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/ReportCell.h"

class ReportSeries;

// Position of a result column by name, whatever its case, or -1.
int FindResultColumn(const std::vector<std::string_view>& names, std::string_view name);

struct ReportColumn {
    const LumoraSQLColumnDescription* description;
    int field;  // of the result
    ReportStyle style;
};

// One entry a column of the definition, which must outlive them. `names` are the result's columns.
// A definition without columns, or one that does not fit the result, throws a text that says why.
std::vector<ReportColumn> MatchReportColumns(const LumoraReportSQLCol& columns,
                                             const std::vector<std::string_view>& names);

// A column of a file: the table's columns, and in front of them the keys of its series that the
// table shows in headings only.
struct ReportFileColumn {
    int field;
    ReportStyle style;
    std::string heading;
    std::string group;  // heading over neighbours, or empty
};
// The heading with its group's in front.
std::string GroupedHeading(const ReportFileColumn& column);
std::vector<ReportFileColumn> MatchFileColumns(const LumoraReportSQLCol& columns,
                                               const std::vector<std::string_view>& names,
                                               const ReportSeries& series);
