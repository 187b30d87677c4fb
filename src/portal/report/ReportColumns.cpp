#include "portal/report/ReportColumns.h"

#include <strings.h>

#include <algorithm>

#include "common/ThrowText.h"
#include "portal/report/ReportSeries.h"

int FindResultColumn(const std::vector<std::string_view>& names, std::string_view name) {
    for (size_t i = 0; i < names.size(); ++i) {
        if (names[i].size() == name.size() &&
            strncasecmp(names[i].data(), name.data(), name.size()) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

std::vector<ReportColumn> MatchReportColumns(const LumoraReportSQLCol& columns,
                                             const std::vector<std::string_view>& names) {
    if (columns.count() == 0) ThrowText("The column definition file of this report is empty.");
    std::vector<ReportColumn> matched;
    for (const LumoraSQLColumnDescription& column : columns) {
        ReportColumn match{&column, FindResultColumn(names, column.fieldname), ReportStyle::kText};
        if (!ParseReportStyle(column.style, match.style))
            ThrowText("Column \"%s\" of this report has the unknown style \"%s\".",
                      column.fieldname, column.style);
        if (match.field < 0)
            ThrowText("The column \"%s\" of this report is not among the columns of its query.",
                      column.fieldname);
        matched.push_back(match);
    }
    return matched;
}

std::string GroupedHeading(const ReportFileColumn& column) {
    return column.group.empty() ? column.heading : column.group + ": " + column.heading;
}

std::vector<ReportFileColumn> MatchFileColumns(const LumoraReportSQLCol& columns,
                                               const std::vector<std::string_view>& names,
                                               const ReportSeries& series) {
    const std::vector<ReportColumn> shown = MatchReportColumns(columns, names);
    std::vector<ReportFileColumn> matched;
    for (const int key : series.fields()) {
        if (std::ranges::any_of(shown, [key](const auto& column) { return column.field == key; }))
            continue;
        const bool titled = matched.empty() && !series.heading().empty();
        matched.push_back(
            {key, ReportStyle::kText, titled ? series.heading() : std::string(names[key]), ""});
    }
    for (const ReportColumn& column : shown)
        matched.push_back({column.field, column.style, column.description->description,
                           column.description->grouptitle});
    return matched;
}
