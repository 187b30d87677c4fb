// What stands against running a report with the criteria of a LumoraReportFilter.
#include <algorithm>
#include <cstring>

#include "common/Parse.h"
#include "portal/report/LumoraReportFilter.h"

namespace {

constexpr const char* kDirections[] = {"Both", "Inbound", "Outbound"};

bool IsDateOrTimestamp(const UString& text) {
    return IsDate(text.c_str()) || IsTimestamp(text.c_str());
}

// A decimal number with at most nine digits before and six behind the point, and no blanks.
bool IsDecimal(const char* text) {
    if (*text == '-') ++text;
    const size_t whole = strspn(text, "0123456789");
    if (whole < 1 || whole > 9) return false;
    text += whole;
    if (*text == '\0') return true;
    return *text == '.' && IsDigits(text + 1, 1, 6);
}

bool IsDuration(const char* text) {
    int64_t seconds = 0;
    return ParseInt64(text, seconds) && seconds >= -1;
}

bool IsSlaId(const char* text) {
    return IsDigits(text, 1, 9);
}

bool IsDirection(const char* text) {
    return std::any_of(std::begin(kDirections), std::end(kDirections),
                       [&](const char* direction) { return strcmp(text, direction) == 0; });
}

// Criteria that stand in the statement as they are, so they must be what they claim to be.
constexpr struct {
    const char* field;
    UString LumoraReportFilter::*text;
    bool (*valid)(const char* text);
    const char* message;
} kChecks[] = {
    {"timeLimit", &LumoraReportFilter::timeLimit, IsDuration,
     "The duration must be a whole number of seconds."},
    {"slaID", &LumoraReportFilter::slaID, IsSlaId, "Choose an SLA from the list."},
    {"markup", &LumoraReportFilter::markup, IsDecimal,
     "The uplift must be a number, such as 17.5."},
    {"vatrate", &LumoraReportFilter::vatrate, IsDecimal,
     "The VAT rate must be a number, such as 17.5."},
    {"inOutFilter", &LumoraReportFilter::inOutFilter, IsDirection,
     "Choose Both, Inbound or Outbound."},
};

}  // namespace

void LumoraReportFilter::CheckDates(std::vector<FilterProblem>& problems) const {
    const bool startGiven = !startDate.IsEmpty();
    const bool startValid = IsDateOrTimestamp(startDate);
    const bool endValid = IsDateOrTimestamp(endDate);
    if (startGiven && !startValid)
        problems.push_back({"startDate", "The start date must be a date, such as 2024-03-15."});
    if (endDate.IsEmpty()) return;
    if (!endValid)
        problems.push_back({"endDate", "The end date must be a date, such as 2024-03-15."});
    else if (!startGiven)
        problems.push_back({"startDate", "An end date needs a start date."});
    if (!startValid || !endValid) return;

    constexpr size_t kDayLength = 10;  // yyyy-MM-dd
    const size_t length = wbDrill.IsEmpty() ? kDayLength : std::string::npos;
    if (strncmp(endDate.c_str(), startDate.c_str(), length) < 0)
        problems.push_back({"endDate", "The end date lies before the start date."});
}

std::vector<FilterProblem> LumoraReportFilter::Check() const {
    std::vector<FilterProblem> problems;
    CheckDates(problems);

    const auto kinds = EntityKinds();
    const bool kindOffered = searchtype.IsEmpty() || searchtype == "freetext" ||
                             std::any_of(kinds.begin(), kinds.end(), [&](const EntityKind& kind) {
                                 return searchtype == kind.searchtype && this->*kind.offered;
                             });
    if (!kindOffered)
        problems.push_back({"searchtype", "This report cannot be run for what was chosen."});

    for (const auto& check : kChecks) {
        const UString& text = this->*check.text;
        if (!text.IsEmpty() && !check.valid(text.c_str()))
            problems.push_back({check.field, check.message});
    }
    return problems;
}
