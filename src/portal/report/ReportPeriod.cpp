#include "portal/report/ReportPeriod.h"

#include <array>
#include <cstring>
#include <string_view>

#include "common/Parse.h"
#include "common/SqlText.h"

namespace {

constexpr char kToday[] = "DATE(NOW())";
constexpr char kYesterday[] = "DATE(NOW() - INTERVAL 1 day)";
constexpr char kMonthStart[] = "DATE_FORMAT(NOW(),'%Y-%m-01')";
constexpr char kYearStart[] = "DATE_FORMAT(NOW(),'%Y-01-01')";
constexpr char kThisWeek[] = "thisweek";
constexpr char kLastWeek[] = "lastweek";
constexpr char kWallboardDay[] = "Wallboard Day";

struct Period {
    const char* keyword;
    const char* label;
    const char* start;  // null: not a fixed expression
    const char* end;
    PeriodSql::Shape shape = PeriodSql::kRange;
};

constexpr Period kPeriods[] = {
    {"today", "Today", kToday, kToday, PeriodSql::kDay},
    {"yesterday", "Yesterday", kYesterday, kYesterday, PeriodSql::kDay},
    {kThisWeek, "This Week", nullptr, kToday},
    {kLastWeek, "Last Week", nullptr, nullptr},
    {"thismonth", "This Month", kMonthStart, kToday},
    {"lastmonth", "Last Month", "DATE_FORMAT(DATE_SUB(NOW(), INTERVAL 1 MONTH),'%Y-%m-01')",
     "DATE_FORMAT(NOW(),'%Y-%m-01')  - INTERVAL 1 day"},
    {"thisyear", "This Year", kYearStart, kToday},
    {"lastyear", "Last Year", "DATE_FORMAT(DATE_SUB(NOW(), INTERVAL 1 YEAR),'%Y-01-01')",
     "DATE_FORMAT(NOW(),'%Y-01-01') - INTERVAL 1 day"},
    {"7days", "Last 7 Days", "DATE(NOW() - INTERVAL 6 day)", kToday},
    {"30days", "Last 30 Days", "DATE(NOW() - INTERVAL 29 day)", kToday},
    {"60days", "Last 60 Days", "DATE(NOW() - INTERVAL 59 day)", kToday},
    {"custom", "Start and End Dates", nullptr, nullptr},
    {"90days", "Last 90 Days", "DATE(NOW() - INTERVAL 89 day)", kToday},
    {"p7days", "Previous 7 Days", "DATE(NOW() - INTERVAL 7 day)", kYesterday},
    {"p30days", "Previous 30 Days", "DATE(NOW() - INTERVAL 30 day)", kYesterday},
    {"p60days", "Previous 60 Days", "DATE(NOW() - INTERVAL 60 day)", kYesterday},
    {"p90days", "Previous 90 Days", "DATE(NOW() - INTERVAL 90 day)", kYesterday},
    {"all", "Since Logging Began", "0", kToday, PeriodSql::kNamed},
};
constexpr auto kOptions = [] {
    std::array<PeriodOption, std::size(kPeriods)> options{};
    for (size_t i = 0; i < options.size(); ++i)
        options[i] = {kPeriods[i].keyword, kPeriods[i].label};
    return options;
}();
static_assert(std::string_view(kPeriods[kCustomPeriodIndex].keyword) == "custom");

const Period* FindPeriod(const char* keyword) {
    for (const Period& period : kPeriods)
        if (strcmp(period.keyword, keyword) == 0) return &period;
    return nullptr;
}

std::string ThisWeekStart(int firstDay) {
    UString sql;
    sql.Format("(DATE(NOW() - INTERVAL (DAYOFWEEK(NOW()) - %i + IF(DAYOFWEEK(NOW())<%i,7,0)) DAY))",
               firstDay, firstDay);
    return sql.c_str();
}

std::string LastWeekStart(int firstDay) {
    UString sql;
    sql.Format(
        "(DATE(NOW() - INTERVAL + 7 + (DAYOFWEEK(NOW()) - %i + IF(DAYOFWEEK(NOW())<%i,7,0)) DAY))",
        firstDay, firstDay);
    return sql.c_str();
}

// The day before the week's first, and the week's length on top of it.
std::string LastWeekEnd(const ReportWeek& week) {
    UString sql;
    sql.Format(
        "(DATE(NOW() - INTERVAL + 8 + (DAYOFWEEK(NOW()) - %i + IF(DAYOFWEEK(NOW())<%i,7,0)) DAY"
        " + INTERVAL %i DAY))",
        week.firstDay, week.firstDay, week.length);
    return sql.c_str();
}

}  // namespace

std::span<const PeriodOption> PeriodOptions() {
    return kOptions;
}

void ReportWeek::SetStartDay(const char* setting) {
    int64_t day = 0;
    if (ParseInt64(setting, day) && day >= 1 && day <= 7)
        firstDay = day == 7 ? 1 : static_cast<int>(day) + 1;
}

void ReportWeek::SetLength(const char* setting) {
    int64_t days = 0;
    if (ParseInt64(setting, days) && days >= 1 && days <= 7) length = static_cast<int>(days);
}

std::string PeriodSql::Condition() const {
    return " BETWEEN " + start + " AND " + (exact ? end : End()) + " ";
}

std::string PeriodSql::End() const {
    return "TIMESTAMP(" + end + ",'23:59:59')";
}

UString PeriodSql::Title(const char* startDate, const char* endDate) const {
    UString title;
    switch (shape) {
        case kDay:
            title = startDate;
            break;
        case kOneDate:
            title.Format("On: %s", startDate);
            break;
        case kRange:
            title.Format("From: %s, To: %s", startDate, endDate);
            break;
        case kNamed:
            return caption;
        case kSpan:
            title.Format("%s - %s", startDate, endDate);
            break;
    }
    if (*caption != '\0') title = title + " (" + UString(caption) + ")";
    return title;
}

bool PeriodNeedsWeek(const char* keyword) {
    return strcmp(keyword, kThisWeek) == 0 || strcmp(keyword, kLastWeek) == 0;
}

PeriodSql KeywordPeriod(const char* keyword, const ReportWeek& week) {
    const Period* period = FindPeriod(keyword);
    if (strcmp(keyword, kThisWeek) == 0)
        return {ThisWeekStart(week.firstDay), kToday, period->shape, period->label};
    if (strcmp(keyword, kLastWeek) == 0)
        return {LastWeekStart(week.firstDay), LastWeekEnd(week), period->shape, period->label};
    if (period == nullptr || period->start == nullptr)
        return {kToday, kToday, PeriodSql::kOneDate, "Today"};
    return {period->start, period->end, period->shape, period->label};
}

PeriodSql ExplicitPeriod(const char* startDate, const char* endDate, bool exact) {
    if (*endDate == '\0') {
        const std::string day = SqlText("DATE('%s')", SqlQuoted(startDate)).c_str();
        return {day, day, PeriodSql::kOneDate, ""};
    }
    if (!exact)
        return {SqlText("DATE('%s')", SqlQuoted(startDate)).c_str(),
                SqlText("DATE('%s')", SqlQuoted(endDate)).c_str(), PeriodSql::kRange, ""};
    return {SqlText("'%s'", SqlQuoted(startDate)).c_str(),
            SqlText("'%s'", SqlQuoted(endDate)).c_str(), PeriodSql::kRange, kWallboardDay,
            /*exact=*/true};
}

PeriodSql WallboardPeriod(const char* start) {
    return {SqlText("'%s'", SqlQuoted(start)).c_str(), "NOW()", PeriodSql::kSpan, kWallboardDay,
            /*exact=*/true};
}

UString hhmmToTime(const char* text, const char* def) {
    if (!IsHhmm(text)) return def;
    UString time;
    time.Format("%.2s:%s", text, text + 2);
    return time;
}
