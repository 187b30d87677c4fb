// ReportDefinition.h: one report of the catalogue, as the database holds it.
#pragma once

#include <memory>
#include <string_view>

#include "common/UStringX.h"

class PortalContext;
class LumoraReportFilter;

struct ReportDefinition {
    UString pagename;
    UString name;
    UString query;  // the SQL template of this run
    UString reportFile;
    UString globalSQL;  // the template in place of it when "Allow Global" is ticked
    UString format;     // words parted by blanks (docs/reports.md)
    UString help;       // how the report counts, a paragraph a line; plain text
    UString multititle;
    UString multikeyfield;
    UString multikeyfield2;
    int category = 0;
    bool hideTimeOfDay = false;  // opt_interval
    // How links run this again: the page, and arguments besides the criteria, as "&name=value".
    UString page = "callreport";
    UString arguments;
    UString fieldFile;  // the column file of the report whose "field" led here; empty: `reportFile`

    // Does `format` have this word?
    bool HasFormat(std::string_view word) const;

    // The report of that page name, with the filter's form rows switched on or off; null when there
    // is none. Throws the server's message.
    static std::unique_ptr<ReportDefinition> Load(PortalContext& ctx, const char* pagename,
                                                  LumoraReportFilter& filter);
};

// The address that runs the report again with these criteria. It has arguments already, so
// "&print=true" and the like can follow.
UString RunUrl(PortalContext& ctx, const ReportDefinition& definition,
               const LumoraReportFilter& filter);
