// ReportCriteria.h: what a run of a report is about, in words.
#pragma once

#include <string>

// "Dates", "From: 2026-03-01, To: 2026-03-31".
struct ReportCriterion {
    std::string label;
    std::string value;
};
