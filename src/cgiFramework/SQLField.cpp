#include "cgiFramework/SQLField.h"

#include <algorithm>

#include "cgiFramework/WebContext.h"
#include "common/Parse.h"
#include "common/Unicode.h"

namespace {

constexpr const char* kTypeNames[] = {  // in the order of SQLFieldType
    "text", "number", "checkbox", "choice", "bits", "duration", "readonly"};

constexpr struct {
    const char* suffix;
    int64_t seconds;
} kDurationParts[] = {{"_days", 86400}, {"_hours", 3600}, {"_minutes", 60}, {"_seconds", 1}};
constexpr size_t kMostDigits = 9;

std::string BitInput(const SQLField& field, const SQLChoice& choice) {
    return field.name + "_" + choice.value;
}

int64_t Bit(const SQLChoice& choice) {
    int64_t number = 0;
    return ParseInt64(choice.value.c_str(), number) && number >= 0 && number < 63
               ? int64_t{1} << number
               : 0;
}

const std::string& Input(const SQLInputs& inputs, const std::string& name) {
    static const std::string none;
    const auto at = inputs.find(name);
    return at != inputs.end() ? at->second : none;
}

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Characters of a line of text, or -1 when it holds what no line may hold.
int LineLength(const std::string& text) {
    const auto* at = reinterpret_cast<const UTF8*>(text.data());
    const UTF8* end = at + text.size();
    int count = 0;
    for (; at < end; ++count) {
        if (*at < ' ' || *at == 0x7F || !isLegalUTF8Sequence(at, end)) return -1;
        at += *at < 0x80 ? 1 : *at < 0xE0 ? 2 : *at < 0xF0 ? 3 : 4;
    }
    return count;
}

std::string CheckText(const SQLField& field, const std::string& text) {
    const int length = LineLength(text);
    if (length < 0) return "This holds characters that cannot be stored.";
    if (length > field.maxLength)
        return "At most " + std::to_string(field.maxLength) + " characters, please.";
    if (length == 0 && field.required) return "Please fill this in.";
    return "";
}

std::string RangeProblem(const SQLField& field) {
    return "Please enter a whole number from " + std::to_string(field.min) + " to " +
           std::to_string(field.max) + ".";
}

std::string CheckNumber(const SQLField& field, const std::string& text) {
    if (text.empty()) return field.required ? "Please fill this in." : "";
    int64_t number = 0;
    const bool valid =
        ParseInt64(text.c_str(), number) && number >= field.min && number <= field.max;
    return valid ? "" : RangeProblem(field);
}

std::string CheckChoice(const SQLField& field, const std::string& text) {
    const auto matches = [&](const SQLChoice& choice) { return choice.value == text; };
    const bool offered = std::any_of(field.choices.begin(), field.choices.end(), matches);
    return offered ? "" : "Please choose one of the list.";
}

std::string DurationToStored(const SQLField& field, const SQLInputs& inputs, std::string& stored) {
    int64_t total = 0;
    for (const auto& part : kDurationParts) {
        const std::string text = Trimmed(Input(inputs, field.name + part.suffix));
        if (text.empty()) continue;
        if (!IsDigits(text.c_str(), 1, kMostDigits)) return "Please enter whole numbers.";
        total += strtoll(text.c_str(), nullptr, 10) * part.seconds;
    }
    if (total < field.min) return "Please enter a time.";
    if (total > field.max) return "This time is too long.";
    stored = std::to_string(total);
    return "";
}

std::string BitsToStored(const SQLField& field, const SQLInputs& inputs) {
    int64_t sum = 0;
    bool all = true;
    for (const SQLChoice& choice : field.choices) {
        if (Input(inputs, BitInput(field, choice)) == "1")
            sum |= Bit(choice);
        else
            all = false;
    }
    return all ? "" : std::to_string(sum);
}

std::string Convert(const SQLField& field, const SQLInputs& inputs, std::string& stored) {
    stored = Trimmed(Input(inputs, field.name));
    switch (field.type) {
        case SQLFieldType::kText:
            return CheckText(field, stored);
        case SQLFieldType::kNumber:
            return CheckNumber(field, stored);
        case SQLFieldType::kChoice:
            return CheckChoice(field, stored);
        case SQLFieldType::kCheckBox:
            stored = stored == "1" ? "1" : "0";
            return "";
        case SQLFieldType::kBits:
            stored = BitsToStored(field, inputs);
            return "";
        case SQLFieldType::kDuration:
            return DurationToStored(field, inputs, stored);
        case SQLFieldType::kReadOnly:
            break;
    }
    return "";
}

}  // namespace

bool ParseSQLFieldType(const std::string& name, SQLFieldType& type) {
    for (size_t i = 0; i < std::size(kTypeNames); ++i) {
        if (name != kTypeNames[i]) continue;
        type = static_cast<SQLFieldType>(i);
        return true;
    }
    return false;
}

void StoredToInputs(const SQLField& field, const std::string& stored, SQLInputs& inputs) {
    int64_t number = 0;
    const bool isNumber = ParseInt64(stored.c_str(), number);
    if (field.type == SQLFieldType::kBits) {
        for (const SQLChoice& choice : field.choices) {
            const bool ticked = stored.empty() || (isNumber && (number & Bit(choice)) != 0);
            inputs[BitInput(field, choice)] = ticked ? "1" : "";
        }
    } else if (field.type == SQLFieldType::kDuration) {
        for (const auto& part : kDurationParts) {
            const int64_t count = number / part.seconds;
            number %= part.seconds;
            inputs[field.name + part.suffix] = std::to_string(count);
        }
    } else {
        inputs[field.name] = stored;
    }
}

void RequestToInputs(const SQLField& field, const WebContext& ctx, SQLInputs& inputs) {
    const auto read = [&](const std::string& name) {
        const WebArgument* argument = ctx.FindWebArgument(name.c_str());
        inputs[name] = argument != nullptr ? argument->Text() : "";
    };
    if (field.type == SQLFieldType::kBits) {
        for (const SQLChoice& choice : field.choices)
            read(BitInput(field, choice));
    } else if (field.type == SQLFieldType::kDuration) {
        for (const auto& part : kDurationParts)
            read(field.name + part.suffix);
    } else if (field.type != SQLFieldType::kReadOnly) {
        read(field.name);
    }
}

std::string InputsToStored(const SQLField& field, const SQLInputs& inputs, std::string& stored) {
    std::string problem = Convert(field, inputs, stored);
    if (problem.empty() && field.check) problem = field.check(stored);
    if (!problem.empty() && !field.complaint.empty()) return field.complaint;
    return problem;
}
