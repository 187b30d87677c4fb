#include "portal/report/LumoraReport.h"

#include <memory>
#include <utility>

#include "common/Html.h"
#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportFilter.h"
#include "portal/report/LumoraReportQuery.h"
#include "portal/report/LumoraReportSQLCol.h"
#include "portal/report/LumoraReportTable.h"
#include "portal/report/ReportDefinition.h"

namespace {

// `element` is h3 or h4; `label` stands before the value. An empty value has no line.
void AddHeaderLine(WebItem& header, const char* element, const char* label, const UString& value) {
    if (value.IsEmpty()) return;
    header.Adopt(new WebDiv("class=\"headerLine\""))
        .Add(new WebValue("<%s style=\"display:inline\">%s%s</%s>", element, label,
                          HtmlText(value.c_str()).c_str(), element));
}

}  // namespace

LumoraReport::LumoraReport(PortalContext& ctx, const ReportDefinition& definition,
                           const LumoraReportFilter& filter) {
    auto columns = std::make_unique<const LumoraReportSQLCol>(ctx.dirname.c_str(),
                                                              definition.reportFile.c_str());
    const LumoraReportQuery query(ctx, definition.query.c_str(), filter);
    UString filteredOn;
    filter.GetHeader(ctx, columns->columns(), filteredOn);

    WebItem& header = Adopt(new WebDiv("class=\"reportHeader\""));
    AddHeaderLine(header, "h3", "", definition.name);
    AddHeaderLine(header, "h3", "For: ", query.GetEntityName());
    AddHeaderLine(header, "h4", "Dates: ", query.GetDateTitle());
    AddHeaderLine(header, "h4", "Time Filter: ", query.GetTimeTitle());
    AddHeaderLine(header, "h4", "Filtered on: ", filteredOn);

    LumoraReportTable& table = Adopt(new LumoraReportTable(ctx, definition.pagename.c_str(),
                                                           query.GetQuery(), std::move(columns)));
    // In the background the page is only built, and its reader told, once the result is there.
    if (ctx.background) table.Run(ctx);
}
