// What stands against running a report with the criteria of a LumoraReportFilter.
#include <algorithm>
#include <cstring>

#include "common/Parse.h"
#include "portal/report/LumoraReportFilter.h"

namespace {

// Of 255 characters; links repeat the criteria in each cell, so they cannot be of any length.
constexpr size_t kMostBytes = 1020;
// Of all of them in a link, which has more to say; web servers usually take 8190.
constexpr size_t kMostTogether = 6000;

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

void LumoraReportFilter::CheckKinds(std::vector<FilterProblem>& problems) const {
    const struct {
        const char* field;
        const UString& chosen;
        std::span<const EntityKind> kinds;
    } searches[] = {{"searchtype", searchtype, EntityKinds()},
                    {"A_searchtype", A_searchtype, SecondEntityKinds()}};
    for (const auto& [field, chosen, kinds] : searches) {
        if (chosen.IsEmpty() || chosen == "freetext") continue;
        const bool offered = std::any_of(kinds.begin(), kinds.end(), [&](const EntityKind& kind) {
            return chosen == kind.searchtype && this->*kind.offered;
        });
        if (!offered) problems.push_back({field, "This report cannot be run for what was chosen."});
    }
}

bool LumoraReportFilter::HasEntity() const {
    const auto kinds = EntityKinds();
    return !inboxId.IsEmpty() ||
           std::any_of(kinds.begin(), kinds.end(), [&](const EntityKind& kind) {
               return this->*kind.offered && !(this->*kind.field).IsEmpty();
           });
}

bool LumoraReportFilter::HasContactNumber() const {
    const UString* const numbers[] = {&contact1, &contact2, &contact3,
                                      &contact4, &contact5, &contact6};
    return std::any_of(std::begin(numbers), std::end(numbers),
                       [](const UString* number) { return !number->IsEmpty(); });
}

// The form's script says the same without asking us.
void LumoraReportFilter::CheckEntity(std::vector<FilterProblem>& problems) const {
    if (mandatoryEntity && !IsTicked(globcb1) && !HasEntity())
        problems.push_back({"suggest1", "This field is mandatory"});
    if (mandatoryContact && contact.IsEmpty() && !HasContactNumber())
        problems.push_back({"contact1", "You must specify at least one contact for this report."});
}

// Whatever else its field says against a value tells more.
void LumoraReportFilter::CheckLengths(std::vector<FilterProblem>& problems) const {
    for (const auto& [name, text] : GivenArguments()) {
        const bool told = std::any_of(problems.begin(), problems.end(), [&](const auto& problem) {
            return strcmp(problem.field, name) == 0;
        });
        if (!told && strlen(text->c_str()) > kMostBytes)
            problems.push_back({name, "This is too long."});
    }
    if (!problems.empty()) return;
    UString url;
    AppendArguments(url);
    if (strlen(url.c_str()) <= kMostTogether) return;
    const std::vector<GivenArgument> given = GivenArguments();
    const auto longest = std::max_element(given.begin(), given.end(), [](auto& a, auto& b) {
        return strlen(a.text->c_str()) < strlen(b.text->c_str());
    });
    problems.push_back({longest->name, "All criteria together are longer than a link can be."});
}

std::vector<FilterProblem> LumoraReportFilter::Check() const {
    std::vector<FilterProblem> problems;
    CheckDates(problems);
    CheckKinds(problems);
    CheckEntity(problems);
    for (const auto& check : kChecks) {
        const UString& text = this->*check.text;
        if (!text.IsEmpty() && !check.valid(text.c_str()))
            problems.push_back({check.field, check.message});
    }
    CheckLengths(problems);
    return problems;
}
