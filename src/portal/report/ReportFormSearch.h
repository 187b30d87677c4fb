// ReportFormSearch.h: the rows of the criteria form in which names are searched for.
#pragma once

class LumoraReportFilter;
class PortalContext;
class ReportFormTable;

// "For:", "Allow Global:", "Show:", "Tag:" and "Contact:", as far as the report `offered` has them,
// filled from `current`. Throws the server's message.
void AddSearchRows(PortalContext& ctx, const LumoraReportFilter& offered,
                   const LumoraReportFilter& current, ReportFormTable& table);

// May the customer's people run reports for all, whatever the search holds ("Allow Global:")?
// Throws the server's message.
bool IsGlobalOffered(PortalContext& ctx);

// A criterion that is any text, such as the tag or the DDI; the values of that kind that there are
// are offered while somebody types. `name` is the criterion's argument, and the kind.
void AddValueRow(PortalContext& ctx, ReportFormTable& table, const char* label, const char* id,
                 const char* name, const char* value, const char* size);
