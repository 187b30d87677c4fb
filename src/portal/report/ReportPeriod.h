// ReportPeriod.h: the periods and the time of day that reports can be asked for, as SQL.
#pragma once

#include <span>
#include <string>

#include "common/UStringX.h"

// A choice of the form's "Report Period".
struct PeriodOption {
    const char* keyword;
    const char* label;
};

// The choices in the form's order. The script of the date fields relies on kCustomPeriodIndex.
std::span<const PeriodOption> PeriodOptions();
constexpr int kCustomPeriodIndex = 11;

// The customer's working week. Days are numbered as MySQL's DAYOFWEEK does: Sunday is 1.
struct ReportWeek {
    int firstDay = 2;
    int length = 7;  // days

    // From the customer's settings, where Monday is 1 and Sunday 7; what is no such number leaves
    // the default.
    void SetStartDay(const char* setting);
    void SetLength(const char* setting);
};

// A period as SQL expressions that the server evaluates: its clock decides what today is.
struct PeriodSql {
    enum Shape {
        kDay,      // "2024-03-15 (Today)"
        kOneDate,  // "On: 2024-03-15"
        kRange,    // "From: 2024-02-01, To: 2024-02-29 (Last Month)"
        kNamed,    // the caption alone
        kSpan,     // "2024-03-15 06:00:00 - 2024-03-15 14:12:40 (Wallboard Day)"
    };
    std::string start;
    std::string end;
    Shape shape = kDay;
    const char* caption = "";  // may be empty with kOneDate and kRange
    bool exact = false;        // start and end are points in time, not whole days

    // The condition that follows the column of a call's start.
    std::string Condition() const;
    // The last moment of the period.
    std::string End() const;
    // The title for the dates that the two expressions evaluated to.
    UString Title(const char* startDate, const char* endDate) const;
};

// The period of a keyword; an unknown keyword means today.
PeriodSql KeywordPeriod(const char* keyword, const ReportWeek& week);
// Does the keyword's period depend on the week?
bool PeriodNeedsWeek(const char* keyword);
// The period between dates that have been checked; an empty `endDate` means one day.
PeriodSql ExplicitPeriod(const char* startDate, const char* endDate, bool exact);
// A wallboard's day so far. `start` is a time stamp that the server evaluated.
PeriodSql WallboardPeriod(const char* start);

// "0830" becomes "08:30"; what is no time of day becomes `def`.
UString hhmmToTime(const char* text, const char* def);
