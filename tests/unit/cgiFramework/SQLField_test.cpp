#include "cgiFramework/SQLField.h"

#include <doctest/doctest.h>

namespace {

SQLField Field(SQLFieldType type) {
    SQLField field;
    field.name = "f";
    field.type = type;
    field.maxLength = 5;
    field.min = 1;
    field.max = 100000;
    field.choices = {{"1", "One"}, {"3", "Three"}};
    return field;
}

// What is stored, or "!" when the inputs cannot be used.
std::string Stored(const SQLField& field, const SQLInputs& inputs) {
    std::string stored;
    return InputsToStored(field, inputs, stored).empty() ? stored : "!";
}

}  // namespace

TEST_CASE("inputs become stored values or are refused") {
    using Type = SQLFieldType;
    const struct {
        Type type;
        SQLInputs inputs;
        const char* stored;
    } cases[] = {
        {Type::kText, {{"f", "  ab \t"}}, "ab"},
        {Type::kText,
         {{"f", "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"}},
         "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"},
        {Type::kText, {{"f", "abcdef"}}, "!"},
        {Type::kText, {{"f", "a\nb"}}, "!"},
        {Type::kText, {{"f", "a\xC3"}}, "!"},
        {Type::kText, {{"f", "\xED\xA0\x80"}}, "!"},
        {Type::kNumber, {{"f", " 7 "}}, "7"},
        {Type::kNumber, {{"f", ""}}, ""},
        {Type::kNumber, {{"f", "0"}}, "!"},
        {Type::kNumber, {{"f", "100001"}}, "!"},
        {Type::kNumber, {{"f", "99999999999999999999"}}, "!"},
        {Type::kNumber, {{"f", "7a"}}, "!"},
        {Type::kChoice, {{"f", "3"}}, "3"},
        {Type::kChoice, {{"f", "2"}}, "!"},
        {Type::kCheckBox, {{"f", "1"}}, "1"},
        {Type::kCheckBox, {}, "0"},
        {Type::kBits, {{"f_1", "1"}}, "2"},
        {Type::kBits, {{"f_1", "1"}, {"f_3", "1"}}, ""},
        {Type::kBits, {}, "0"},
        {Type::kDuration, {{"f_days", "1"}, {"f_seconds", "2"}}, "86402"},
        {Type::kDuration, {{"f_minutes", " 90 "}}, "5400"},
        {Type::kDuration, {}, "!"},
        {Type::kDuration, {{"f_days", "2"}}, "!"},
        {Type::kDuration, {{"f_hours", "1.5"}}, "!"},
        {Type::kDuration, {{"f_hours", "-1"}, {"f_days", "1"}}, "!"},
    };
    int number = 0;
    for (const auto& c : cases) {
        CAPTURE(++number);
        CHECK(Stored(Field(c.type), c.inputs) == c.stored);
    }
}

TEST_CASE("what is stored comes back the same through the inputs") {
    for (const auto& [type, stored] : {std::pair{SQLFieldType::kDuration, "93784"},
                                       {SQLFieldType::kBits, "8"},
                                       {SQLFieldType::kBits, ""},
                                       {SQLFieldType::kBits, "0"},
                                       {SQLFieldType::kNumber, "12"},
                                       {SQLFieldType::kCheckBox, "1"}}) {
        SQLInputs inputs;
        StoredToInputs(Field(type), stored, inputs);
        CHECK(Stored(Field(type), inputs) == stored);
    }
}

TEST_CASE("a field's own complaint and check come before the general ones") {
    SQLField field = Field(SQLFieldType::kText);
    field.required = true;
    field.check = [](const std::string& text) { return text == "no" ? "Not this." : ""; };
    std::string stored;
    CHECK(InputsToStored(field, {{"f", "no"}}, stored) == "Not this.");
    CHECK(InputsToStored(field, {{"f", ""}}, stored) == "Please fill this in.");
    field.complaint = "Bad name";
    CHECK(InputsToStored(field, {{"f", "no"}}, stored) == "Bad name");
    CHECK(InputsToStored(field, {{"f", "yes"}}, stored).empty());
}
