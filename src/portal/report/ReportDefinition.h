// ReportDefinition.h: one report of the catalogue, as the database holds it.
#pragma once

#include <memory>

#include "common/UStringX.h"

class PortalContext;
class LumoraReportFilter;

struct ReportDefinition {
    UString pagename;
    UString name;
    UString query;  // the SQL template
    UString reportFile;
    UString globalSQL;
    UString format;
    UString multititle;
    UString multikeyfield;
    UString multikeyfield2;
    int category = 0;
    bool hideTimeOfDay = false;  // opt_interval

    // The report of that page name, with the filter's form rows switched on or off; null when there
    // is none. Throws the server's message.
    static std::unique_ptr<ReportDefinition> Load(PortalContext& ctx, const char* pagename,
                                                  LumoraReportFilter& filter);
};
