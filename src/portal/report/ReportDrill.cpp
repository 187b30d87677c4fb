#include "portal/report/ReportDrill.h"

#include <cctype>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

#include "common/Parse.h"
#include "common/ThrowText.h"
#include "portal/context/PortalContext.h"

namespace {

constexpr char kPlaceholder[] = "[drill]";
constexpr size_t kMostValue = 255;  // bytes; no column holds more

enum class Value { kText, kDay, kMonth, kHour, kWeekday };

struct Outcome {
    const char* word;
    const char* condition;
};

// One way to tell the rows of a report apart. In its texts "{}" is the value, as SQL.
struct Dimension {
    const char* word;
    Value value;
    const char* condition;
    const char* permitted;  // null: what the log has for parties that are not told apart
    std::span<const Outcome> outcomes;
    const char* where = nullptr;  // in place of the period and the legs that count
    // One of these columns must carry [entity] in the report: names of one kind, say of agents,
    // must not admit to what is permitted by another.
    const char* asks[2] = {nullptr, nullptr};
};

// ---- the call log

// Calls count once, at their first leg; the others were received by transfer.
constexpr char kCallPeriod[] =
    "gmtdatetime [date] AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2) AND "
    "B_Remote <> '!CollectVoicemail'";

// Where "[entity]" may stand in a report of calls. A service that answered is no party.
struct Party {
    const char* column;
    const char* permitted;
    bool usual;  // in lists of a report that does not say
};
constexpr Party kCallParties[] = {
    {"A_Name", "A_Name [entity]", true},
    {"B_Name", "B_Name [entity]", true},
    {"origCostCentre", "origCostCentre [entity]", true},
    {"B_RemoteName", "(B_RemoteName [entity] AND B_Remote NOT LIKE '!%')", true},
    {"A_Trunk", "A_Trunk [entity]", false},
    {"B_Trunk", "B_Trunk [entity]", false},
};

#define LUMORA_INBOUND "transfercall <> 2 AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> ''"
#define LUMORA_PASSED_ON "(transfercall = 1 AND callduration < 2)"
#define LUMORA_VOICEMAIL "B_Remote LIKE '!LeaveVoicemail%'"

constexpr Outcome kCallOutcomes[] = {
    {"calls", "transfercall <> 2"},
    {"legs", "TRUE"},
    {"inbound", LUMORA_INBOUND},
    {"offered", LUMORA_INBOUND " AND NOT (hasconnected = 0 AND " LUMORA_PASSED_ON ")"},
    {"answered", LUMORA_INBOUND " AND hasconnected"},
    {"unanswered", LUMORA_INBOUND " AND hasconnected = 0 AND NOT " LUMORA_PASSED_ON},
    {"voicemail", LUMORA_INBOUND " AND hasconnected = 0 AND " LUMORA_VOICEMAIL},
    {"passedon",
     LUMORA_INBOUND " AND hasconnected = 0 AND " LUMORA_PASSED_ON " AND NOT " LUMORA_VOICEMAIL},
    {"abandoned",
     LUMORA_INBOUND " AND hasconnected = 0 AND NOT " LUMORA_PASSED_ON " AND NOT " LUMORA_VOICEMAIL},
    {"outbound", "transfercall <> 2 AND B_Trunk <> '' AND B_Out = 1 AND origCostCentre <> ''"},
    {"internal", "transfercall <> 2 AND A_Trunk = '' AND B_Trunk = ''"},
    {"transferred", "transfercall = 2"},
    {"connected", "hasconnected"},
};

// A call through two trunks is counted with the number that it came from.
constexpr Outcome kNumberOutcomes[] = {
    {"calls", "transfercall <> 2 AND origCostCentre <> ''"},
    {"legs", "origCostCentre <> ''"},
    {"inbound", LUMORA_INBOUND},
    {"answered", LUMORA_INBOUND " AND hasconnected"},
    {"unanswered", LUMORA_INBOUND " AND hasconnected = 0"},
    {"voicemail", LUMORA_INBOUND " AND hasconnected = 0 AND " LUMORA_VOICEMAIL},
    {"passedon",
     LUMORA_INBOUND " AND hasconnected = 0 AND " LUMORA_PASSED_ON " AND NOT " LUMORA_VOICEMAIL},
    {"abandoned",
     LUMORA_INBOUND " AND hasconnected = 0 AND NOT " LUMORA_PASSED_ON " AND NOT " LUMORA_VOICEMAIL},
    {"outbound",
     "transfercall <> 2 AND origCostCentre <> '' AND NOT (A_Trunk <> '' AND A_Out = 0)"},
    {"transferred", "transfercall = 2 AND origCostCentre <> ''"},
    {"connected", "hasconnected AND origCostCentre <> ''"},
};

// A user's calls are those made, and those answered or missed: a call that was answered is the
// one's who answered, any other the one's who was rung.
#define LUMORA_USER_CALLED "(A_Trunk = '' AND A_Name = {} AND A_Name [entity])"
#define LUMORA_USER_RUNG                                                                    \
    "(B_Trunk = '' AND ((hasconnected AND B_RemoteName = {} AND B_RemoteName [entity]) OR " \
    "(hasconnected = 0 AND transfercall <> 2 AND NOT " LUMORA_PASSED_ON                     \
    " AND B_Name = {} AND "                                                                 \
    "B_Name [entity])))"

constexpr Outcome kUserOutcomes[] = {
    {"calls", "transfercall <> 2"},
    {"legs", "TRUE"},
    {"inbound", "transfercall <> 2 AND A_Trunk <> '' AND " LUMORA_USER_RUNG},
    {"answered", "transfercall <> 2 AND hasconnected AND " LUMORA_USER_RUNG},
    {"missed", "hasconnected = 0 AND " LUMORA_USER_RUNG},
    {"unanswered", "hasconnected = 0 AND " LUMORA_USER_RUNG},
    {"voicemail", "hasconnected = 0 AND " LUMORA_VOICEMAIL " AND " LUMORA_USER_RUNG},
    {"abandoned", "hasconnected = 0 AND NOT " LUMORA_VOICEMAIL " AND " LUMORA_USER_RUNG},
    {"outbound", "transfercall <> 2 AND B_Trunk <> '' AND " LUMORA_USER_CALLED},
    {"internal", "transfercall <> 2 AND B_Trunk = '' AND " LUMORA_USER_CALLED},
    {"transferred", "transfercall = 2 AND hasconnected AND " LUMORA_USER_RUNG},
    {"connected", "hasconnected"},
};

// Legs are joined by transferConfId. Only the way back to the leg before needs a search, and that
// leg began within the same day or so.
constexpr char kLegsOfCall[] =
    "confId IN (WITH RECURSIVE chain AS (SELECT {} AS id "
    "UNION SELECT later.transferConfId FROM chain INNER JOIN CallLog AS later "
    "ON later.confId = chain.id WHERE later.customerid IN('[customerSearchGroup]') "
    "AND later.transferConfId <> '' "
    "UNION SELECT earlier.confId FROM chain INNER JOIN CallLog AS earlier "
    "ON earlier.transferConfId = chain.id WHERE earlier.customerid IN('[customerSearchGroup]') "
    "AND earlier.gmtdatetime BETWEEN "
    "(SELECT MIN(gmtdatetime) FROM CallLog WHERE confId = {}) - INTERVAL 1 DAY AND "
    "(SELECT MAX(gmtdatetime) FROM CallLog WHERE confId = {}) + INTERVAL 1 DAY) "
    "SELECT id FROM chain) AND confId <> ''";

constexpr Dimension kCallDimensions[] = {
    {"user",
     Value::kText,
     "(" LUMORA_USER_CALLED " OR " LUMORA_USER_RUNG ")",
     "TRUE",
     kUserOutcomes,
     nullptr,
     {"A_Name", "B_Name"}},
    {"department",
     Value::kText,
     "origCostCentre = {}",
     "origCostCentre [entity]",
     kCallOutcomes,
     nullptr,
     {"origCostCentre"}},
    {"queue", Value::kText, "B_Name = {}", "B_Name [entity]", kCallOutcomes, nullptr, {"B_Name"}},
    // A service that answered is nobody, though the permitted names hold the voicemail service.
    {"agent",
     Value::kText,
     "B_RemoteName = {} AND B_Remote NOT LIKE '!%'",
     "B_RemoteName [entity]",
     kCallOutcomes,
     nullptr,
     {"B_RemoteName"}},
    // The bounds let the server read this day's rows alone.
    {"day", Value::kDay, "gmtdatetime >= {} AND gmtdatetime < {} + INTERVAL 1 DAY", nullptr,
     kCallOutcomes},
    {"month", Value::kMonth, "gmtdatetime >= {} AND gmtdatetime < {} + INTERVAL 1 MONTH", nullptr,
     kCallOutcomes},
    {"hour", Value::kHour, "HOUR(gmtdatetime) = {}", nullptr, kCallOutcomes},
    {"weekday", Value::kWeekday, "DAYOFWEEK(gmtdatetime) = {}", nullptr, kCallOutcomes},
    {"ddi", Value::kText, "targetNumber = {}", nullptr, kCallOutcomes},
    {"trunk", Value::kText, "(A_Trunk = {} OR B_Trunk = {})", nullptr, kCallOutcomes},
    {"account", Value::kText, "accountCode = {}", nullptr, kCallOutcomes},
    {"number", Value::kText,
     "((A_Trunk <> '' AND A_Out = 0) OR (B_Trunk <> '' AND B_Out = 1)) AND "
     "IF(A_Trunk <> '' AND A_Out = 0, A_Num, B_Num) = {}",
     nullptr, kNumberOutcomes},
    {"call", Value::kText, kLegsOfCall, nullptr, kCallOutcomes, "transfercall IN (0, 1, 2)"},
};

// ---- the shared inbox

// The list's template has the period, of which a question's answer is a part, and says of each
// message whether it asks (`asks`) and when that was answered (`answeredat`).
constexpr char kMessagePeriod[] = "TIME(createdAt) [time]";
constexpr Party kMessageParties[] = {{"inboxid", "inboxid [entity]", true}};
constexpr Outcome kMessageOutcomes[] = {
    {"messages", "TRUE"},
    {"received", "author = ''"},
    {"sent", "author <> ''"},
    {"questions", "asks"},
    {"answered", "asks AND answeredat IS NOT NULL"},
    {"unanswered", "asks AND answeredat IS NULL"},
};
constexpr Dimension kMessageDimensions[] = {
    {"inbox", Value::kText, "inboxid = {}", nullptr, kMessageOutcomes},
    // Those who left the directory are one.
    {"teammate", Value::kText, "author <> '' AND IFNULL(tm.id, '') = {}", nullptr,
     kMessageOutcomes},
    {"tag", Value::kText,
     "convid IN (SELECT t.convid FROM FrontConversationTag AS t INNER JOIN FrontTag AS g "
     "ON g.id = t.tagid AND g.customerid = t.customerid "
     "WHERE t.customerid IN('[customerSearchGroup]') AND g.name = {})",
     nullptr, kMessageOutcomes},
    {"day", Value::kDay, "createdAt >= {} AND createdAt < {} + INTERVAL 1 DAY", nullptr,
     kMessageOutcomes},
    {"month", Value::kMonth, "createdAt >= {} AND createdAt < {} + INTERVAL 1 MONTH", nullptr,
     kMessageOutcomes},
    {"hour", Value::kHour, "HOUR(createdAt) = {}", nullptr, kMessageOutcomes},
    {"weekday", Value::kWeekday, "DAYOFWEEK(createdAt) = {}", nullptr, kMessageOutcomes},
    {"conversation", Value::kText, "convid = {}", nullptr, kMessageOutcomes},
};

// In a report that counts the messages of permitted teammates only.
constexpr char kTeammatesMark[] = "[allteammates]";
constexpr char kTeammates[] =
    " AND ([allteammates] OR author = '' OR author IN (SELECT entityNumber FROM CallLogPermissions "
    "WHERE contactid = '[contactID]' AND customerid IN('[customerSearchGroup]') AND "
    "type = 'Teammate' AND logging = 1))";

// ---- putting them together

struct Source {
    std::span<const Dimension> dimensions;
    std::span<const Party> parties;
    const char* period;
};

constexpr Source kCalls = {kCallDimensions, kCallParties, kCallPeriod};
constexpr Source kMessages = {kMessageDimensions, kMessageParties, kMessagePeriod};

template <class Entry>
const Entry* FindWord(std::span<const Entry> entries, const char* word) {
    for (const Entry& entry : entries)
        if (strcmp(entry.word, word) == 0) return &entry;
    return nullptr;
}

std::string Quoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

std::string Hexadecimal(std::string_view text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string literal = "_utf8mb4 X'";
    for (const char raw : text) {
        const auto byte = static_cast<unsigned char>(raw);
        literal += kDigits[byte >> 4];
        literal += kDigits[byte & 15];
    }
    return literal + "'";
}

bool IsWithin(const char* text, int64_t least, int64_t most) {
    int64_t number = 0;
    return IsDigits(text, 1, 2) && ParseInt64(text, number) && number >= least && number <= most;
}

// The value as SQL; empty when it is none of its kind.
std::string ValueSql(Value kind, const char* text) {
    switch (kind) {
        case Value::kText:
            return strlen(text) <= kMostValue ? Hexadecimal(text) : "";
        case Value::kDay:
            return IsDate(text) ? Quoted(text) : "";
        case Value::kMonth: {
            const std::string first = std::string(text) + "-01";
            return IsDate(first.c_str()) ? Quoted(first) : "";
        }
        case Value::kHour:
            return IsWithin(text, 0, 23) ? text : "";
        case Value::kWeekday:
            return IsWithin(text, 1, 7) ? text : "";
    }
    return "";
}

std::string ReplaceAll(std::string_view text, std::string_view mark, std::string_view value) {
    std::string filled;
    for (size_t at = 0;;) {
        const size_t found = text.find(mark, at);
        filled += text.substr(at, found - at);
        if (found == std::string_view::npos) return filled;
        filled += value;
        at = found + mark.size();
    }
}

// Does "[entity]" stand behind this column in the report?
bool IsAsked(std::string_view report, std::string_view column) {
    const std::string text = std::string(column) + " [entity]";
    for (size_t at = report.find(text); at != std::string_view::npos;
         at = report.find(text, at + 1)) {
        if (at == 0 ||
            (!isalnum(static_cast<unsigned char>(report[at - 1])) && report[at - 1] != '_'))
            return true;
    }
    return false;
}

bool IsOffered(const Dimension& dimension, std::string_view report) {
    if (dimension.asks[0] == nullptr) return true;
    for (const char* column : dimension.asks)
        if (column != nullptr && IsAsked(report, column)) return true;
    return false;
}

// The dimension that one pair of arguments names and its value; throws when they name none.
const Dimension& ReadDimension(const PortalContext& ctx, const Source& source,
                               std::string_view report, const char* by, const char* value,
                               std::string& sql) {
    const char* word = ctx.ArgumentText(by);
    const Dimension* dimension = FindWord(source.dimensions, word);
    if (dimension == nullptr || !IsOffered(*dimension, report))
        ThrowText("This list cannot be made: \"%s\" is no way to choose calls.", word);
    const char* text = ctx.ArgumentText(value);
    sql = ValueSql(dimension->value, text);
    if (sql.empty())
        ThrowText("This list cannot be made: \"%s\" is no value for \"%s\".", text, word);
    return *dimension;
}

// Who must be permitted: one of the parties that the report itself asks for.
std::string PermittedParties(const Source& source, std::string_view report) {
    std::string any;
    std::string usual;
    for (const Party& party : source.parties) {
        const auto append = [&](std::string& parties) {
            parties.append(parties.empty() ? "(" : " OR ").append(party.permitted);
        };
        if (IsAsked(report, party.column)) append(any);
        if (party.usual) append(usual);
    }
    return (any.empty() ? usual : any) + ")";
}

// The dimension that names somebody, or else the first, decides whose calls they are.
std::string DrillCondition(const PortalContext& ctx, const Source& source,
                           std::string_view report) {
    std::string value;
    std::string value2;
    const Dimension* first = &ReadDimension(ctx, source, report, "by", "value", value);
    const Dimension* second = *ctx.ArgumentText("by2") != '\0'
                                  ? &ReadDimension(ctx, source, report, "by2", "value2", value2)
                                  : nullptr;
    if (second != nullptr && first->permitted == nullptr && second->permitted != nullptr) {
        std::swap(first, second);
        std::swap(value, value2);
    }
    const char* word = ctx.ArgumentText("outcome");
    const Outcome* outcome =
        FindWord(first->outcomes, *word != '\0' ? word : first->outcomes[0].word);
    if (outcome == nullptr)
        ThrowText("This list cannot be made: \"%s\" is no outcome of these calls.", word);

    std::string condition = first->where != nullptr ? first->where : source.period;
    condition.append(" AND ").append(ReplaceAll(first->condition, "{}", value));
    if (second != nullptr)
        condition.append(" AND ").append(ReplaceAll(second->condition, "{}", value2));
    condition.append(" AND ").append(ReplaceAll(outcome->condition, "{}", value));
    for (const Dimension* dimension : {first, second})
        if (dimension != nullptr && dimension->permitted != nullptr)
            condition.append(" AND ").append(dimension->permitted);
    if (first->permitted == nullptr)
        condition.append(" AND ").append(PermittedParties(source, report));
    if (report.find(kTeammatesMark) != std::string_view::npos) condition += kTeammates;
    return condition;
}

}  // namespace

std::string FillDrill(const PortalContext& ctx, DrillKind kind, const char* report,
                      const char* templateText) {
    const Source& source = kind == DrillKind::kCalls ? kCalls : kMessages;
    return ReplaceAll(templateText, kPlaceholder, DrillCondition(ctx, source, report));
}

std::string DrillRow(const PortalContext& ctx) {
    // The others are told by ids and numbers that nobody reads.
    constexpr struct {
        std::string_view by;
        const char* heading;
    } kNamed[] = {{"user", "User"},
                  {"department", "Department"},
                  {"queue", "Queue"},
                  {"agent", "Agent"},
                  {"day", "Day"},
                  {"month", "Month"},
                  {"hour", "Hour"},
                  {"ddi", "DDI"},
                  {"account", "Account code"},
                  {"tag", "Tag"},
                  {"number", "Number"}};
    std::string row;
    for (const auto& [by, value] : {std::pair{"by", "value"}, std::pair{"by2", "value2"}})
        for (const auto& each : kNamed)
            if (each.by == ctx.ArgumentText(by) && *ctx.ArgumentText(value) != '\0')
                row.append(row.empty() ? "" : ", ")
                    .append(each.heading)
                    .append(" ")
                    .append(ctx.ArgumentText(value));
    return row;
}
