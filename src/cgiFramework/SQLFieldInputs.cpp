// How the fields of a form over one row are drawn.
#include "cgiFramework/SQLField.h"
#include "cgiFramework/WebForm.h"
#include "common/Html.h"

namespace {

constexpr struct {
    const char* suffix;
    const char* caption;
    const char* width;
} kDurationInputs[] = {{"_days", "days", "5"},
                       {"_hours", "hours", "3"},
                       {"_minutes", "minutes", "3"},
                       {"_seconds", "seconds", "3"}};

UString Escaped(const std::string& text) {
    return HtmlAttr(text.c_str());
}

const char* Value(const SQLInputs& inputs, const std::string& name) {
    const auto at = inputs.find(name);
    return at != inputs.end() ? at->second.c_str() : "";
}

// Id, what describes the input, and whether it is wrong.
UString Attributes(const SQLField& field, const std::string& id, const char* more, bool wrong) {
    UString described;
    if (wrong) described.Format("%s_error ", field.name.c_str());
    if (!field.hint.empty()) described += (field.name + "_hint").c_str();
    UString attributes;
    attributes.Format("id=\"%s\" %s%s", id.c_str(), more,
                      wrong ? " class=\"invalid\" aria-invalid=\"true\"" : "");
    if (!described.IsEmpty()) {
        UString reference;
        reference.Format(" aria-describedby=\"%s\"", described.c_str());
        attributes += reference;
    }
    return attributes;
}

void AddLine(WebItem& cell, const SQLField& field, const SQLInputs& inputs, bool wrong) {
    const bool number = field.type == SQLFieldType::kNumber;
    UString more;
    if (number)
        more = "size=\"12\" inputmode=\"numeric\"";
    else
        more.Format("size=\"%d\" maxlength=\"%d\"", field.maxLength < 40 ? field.maxLength : 40,
                    field.maxLength);
    if (field.required) more += " required";
    cell.Add(new WebField(field.name.c_str(), "text", HtmlAttr(Value(inputs, field.name)).c_str(),
                          Attributes(field, field.name, more.c_str(), wrong).c_str()));
}

void AddChoice(WebItem& cell, const SQLField& field, const SQLInputs& inputs, bool wrong) {
    WebDropDownList& list = cell.Adopt(
        new WebDropDownList(field.name.c_str(), Attributes(field, field.name, "", wrong).c_str()));
    bool offered = false;
    for (const SQLChoice& choice : field.choices) {
        const bool chosen = choice.value == Value(inputs, field.name);
        offered = offered || chosen;
        // Written here, since an item without a value would send its caption.
        list.Add(new WebValue("<option value=\"%s\"%s>%s</option>\n", Escaped(choice.value).c_str(),
                              chosen ? " selected" : "", HtmlText(choice.caption.c_str()).c_str()));
    }
    // What is stored and no longer offered stays on show until somebody chooses.
    if (!offered) {
        const UString other = HtmlAttr(Value(inputs, field.name));
        list.Insert(new WebValue("<option value=\"%s\" selected>%s</option>\n", other.c_str(),
                                 other.c_str()));
    }
}

void AddTick(WebItem& parent, const std::string& name, const std::string& attributes,
             const char* value, const char* caption) {
    parent.Add(
        new WebValue("<label><input type=\"checkbox\" name=\"%s\" value=\"1\" %s%s>%s</label>",
                     Escaped(name).c_str(), attributes.c_str(), *value == '1' ? " checked" : "",
                     HtmlText(caption).c_str()));
}

void AddBits(WebItem& cell, const SQLField& field, const SQLInputs& inputs) {
    WebDiv& row = cell.Adopt(new WebDiv("class=\"tickRow\" role=\"group\" aria-label=\"%s\"",
                                        Escaped(field.label).c_str()));
    for (const SQLChoice& choice : field.choices) {
        const std::string name = field.name + "_" + choice.value;
        AddTick(row, name, "", Value(inputs, name), choice.caption.c_str());
        row.Add(new WebValue(" "));
    }
}

void AddDuration(WebItem& cell, const SQLField& field, const SQLInputs& inputs, bool wrong) {
    WebDiv& row = cell.Adopt(new WebDiv("class=\"durationRow\" role=\"group\" aria-label=\"%s\"",
                                        Escaped(field.label).c_str()));
    for (const auto& input : kDurationInputs) {
        const std::string name = field.name + input.suffix;
        UString more;
        more.Format("size=\"%s\" maxlength=\"9\" inputmode=\"numeric\"", input.width);
        // Each number stays with its unit where the line breaks.
        row.Add(new WebValue("<span>"));
        row.Add(new WebField(name.c_str(), "text", HtmlAttr(Value(inputs, name)).c_str(),
                             Attributes(field, name, more.c_str(), wrong).c_str()));
        row.Add(new WebValue("<label for=\"%s\">%s</label></span> ", name.c_str(), input.caption));
    }
}

}  // namespace

std::string LabelledInput(const SQLField& field) {
    switch (field.type) {
        case SQLFieldType::kBits:
        case SQLFieldType::kReadOnly:
            return "";
        case SQLFieldType::kDuration:
            return field.name + kDurationInputs[0].suffix;
        default:
            return field.name;
    }
}

void AddInputs(WebItem& cell, const SQLField& field, const SQLInputs& inputs,
               const std::string& problem) {
    const bool wrong = !problem.empty();
    switch (field.type) {
        case SQLFieldType::kText:
        case SQLFieldType::kNumber:
            AddLine(cell, field, inputs, wrong);
            break;
        case SQLFieldType::kChoice:
            AddChoice(cell, field, inputs, wrong);
            break;
        case SQLFieldType::kCheckBox:
            cell.Add(new WebValue("<input type=\"checkbox\" name=\"%s\" value=\"1\" %s%s>",
                                  field.name.c_str(),
                                  Attributes(field, field.name, "", wrong).c_str(),
                                  *Value(inputs, field.name) == '1' ? " checked" : ""));
            break;
        case SQLFieldType::kBits:
            AddBits(cell, field, inputs);
            break;
        case SQLFieldType::kDuration:
            AddDuration(cell, field, inputs, wrong);
            break;
        case SQLFieldType::kReadOnly:
            cell.Add(new WebValue("%s", HtmlText(Value(inputs, field.name)).c_str()));
            break;
    }
    if (!field.hint.empty())
        cell.Add(new WebValue("<div class=\"hint\" id=\"%s_hint\">%s</div>", field.name.c_str(),
                              HtmlText(field.hint.c_str()).c_str()));
    if (wrong)
        cell.Add(new WebValue("<span class=\"fieldError\" role=\"alert\" id=\"%s_error\">%s</span>",
                              field.name.c_str(), HtmlText(problem.c_str()).c_str()));
}

void AddFieldTable(WebItem& form, const std::vector<SQLField>& fields, const SQLInputs& inputs,
                   const std::map<std::string, std::string>& problems) {
    WebTable& table = form.Adopt(new WebDiv("class=\"DetailTable\""))
                          .Adopt(new WebTable("class=\"lumoraFormTable\""));
    for (const SQLField& field : fields) {
        WebRow& row = table.Adopt(new WebRow(""));
        WebCell& label = row.Adopt(new WebCell("class=\"formLabel\""));
        const UString text = HtmlText(field.label.c_str());
        const std::string input = LabelledInput(field);
        if (input.empty())
            label.Add(new WebValue("%s", text.c_str()));
        else
            label.Add(new WebValue("<label for=\"%s\">%s</label>", input.c_str(), text.c_str()));
        const auto problem = problems.find(field.name);
        AddInputs(row.Adopt(new WebCell("class=\"formField\"")), field, inputs,
                  problem != problems.end() ? problem->second : "");
    }
}
