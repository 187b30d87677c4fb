// SQLField.h: the fields of a form over one row: what they look like, and which values they take.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

class WebContext;
class WebItem;

enum class SQLFieldType {
    kText,      // one line
    kNumber,    // a whole number from `min` to `max`
    kCheckBox,  // 1 or 0
    kChoice,    // one of the choices
    kBits,      // tick boxes: the sum of 1 << choice; all ticked is no value at all
    kDuration,  // seconds from `min` to `max`, entered as days, hours, minutes and seconds
    kReadOnly,  // shown and never written
};

// The type of that name (text, number, checkbox, choice, bits, duration, readonly). False for an
// unknown name.
[[nodiscard]] bool ParseSQLFieldType(const std::string& name, SQLFieldType& type);

struct SQLChoice {
    std::string value;
    std::string caption;
};

struct SQLField {
    std::string name;  // of its input
    std::string label;
    std::string column;  // where it is kept, or the attribute's name
    SQLFieldType type = SQLFieldType::kText;
    bool attribute = false;  // kept in the table of attributes
    bool required = false;
    int maxLength = 128;  // characters of a text
    int64_t min = 0;
    int64_t max = INT32_MAX;
    std::string hint;
    std::vector<SQLChoice> choices;
    std::string complaint;  // told when the value cannot be used; empty: a text that says why
    // A further test of the value to be stored: what is wrong with it, or "".
    std::function<std::string(const std::string&)> check;
};

// Texts of a form's inputs by their names. A field may have several inputs.
using SQLInputs = std::map<std::string, std::string>;

// The inputs that show a stored value.
void StoredToInputs(const SQLField& field, const std::string& stored, SQLInputs& inputs);
// The inputs as the request brings them.
void RequestToInputs(const SQLField& field, const WebContext& ctx, SQLInputs& inputs);
// What is wrong with the inputs, or "": then `stored` is the value to keep.
std::string InputsToStored(const SQLField& field, const SQLInputs& inputs, std::string& stored);

// Adds the inputs to the cell, and the problem beside them.
void AddInputs(WebItem& cell, const SQLField& field, const SQLInputs& inputs,
               const std::string& problem);
// The id that a label of this field refers to; empty when it has several inputs of equal rank.
std::string LabelledInput(const SQLField& field);
// Adds a table of all fields, a row each: label, inputs, and the problem of the field's name.
void AddFieldTable(WebItem& form, const std::vector<SQLField>& fields, const SQLInputs& inputs,
                   const std::map<std::string, std::string>& problems);
