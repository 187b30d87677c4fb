// ReportDirectory.h: the criteria of a report that are chosen from the directory.
#pragma once

#include <span>

#include "common/UStringX.h"

class LDAPDropDownValue;
class LumoraReportFilter;
class PortalContext;

// A drop-down list of the form.
struct DirectoryCriterion {
    const char* field;  // its name
    const char* label;
    const char* all;         // caption of the choice that does not choose
    const char* base;        // below which entry the choices are; empty: anywhere
    const char* filter;      // which entries they are
    const char* valueField;  // what of an entry is the criterion
    bool mirrored;           // only the trunks that the database names as the customer's
    UString LumoraReportFilter::*chosen;
    bool (*offered)(const LumoraReportFilter& filter);
};

// In the form's order.
std::span<const DirectoryCriterion> DirectoryCriteria();

// Reads the choices. False when the directory does not answer; the reason is in the log. Throws the
// database server's message.
[[nodiscard]] bool ReadDirectoryChoices(PortalContext& ctx, const DirectoryCriterion& criterion,
                                        LDAPDropDownValue& value);
