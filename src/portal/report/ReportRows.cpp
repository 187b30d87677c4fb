#include "portal/report/ReportRows.h"

#include "portal/background/BackgroundRender.h"
#include "portal/context/PortalContext.h"

ReportRows::ReportRows(PortalContext& ctx, const std::string& query)
    : cost_(ctx), cursor_(ctx.GetSQLSession()) {
    cursor_.Stream(SqlText::FromTemplate(query));
    for (int i = 0; i < cursor_.ColumnCount(); ++i)
        names_.emplace_back(cursor_.ColumnName(i));
}

void ReportRows::Read(const std::vector<ReportRowReader*>& readers) {
    std::vector<std::string_view> row;
    for (uint64_t rows = 1; cursor_.NextRow(); ++rows) {
        cursor_.ViewRow(row);
        for (ReportRowReader* reader : readers)
            reader->AddRow(row);
        CountBackgroundRows(rows);
    }
    cost_.Finish();
}
