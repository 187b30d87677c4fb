#include "cgiFramework/Report.h"

#include <dirent.h>
#include <regex.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "cgiFramework/WebContext.h"
#include "common/CommandLine.h"
#include "common/Parse.h"
#include "common/Path.h"
#include "kernel/OSConsole.h"

namespace {

constexpr char kSuffix[] = ".report";

// Reads the lines of one definition into a Report.
class DefinitionReader {
  public:
    explicit DefinitionReader(Report& report) : report_(report), detail_(report.detail) {}
    void Line(const std::string& line);
    void Check();

  private:
    using Words = CommandLine;
    void Column(const Words& words, bool shown);
    void Link(const Words& words);
    void Search(const Words& words);
    void Attributes(const Words& words);
    void Field(const Words& words);
    void FieldDetail(const std::string& key, const std::string& value, const Words& words);
    bool TextKey(const std::string& key, const std::string& value);
    bool NumberKey(const std::string& key, const std::string& value);
    bool WordsKey(const std::string& key, const Words& words);
    SQLTableColumn* FindColumn(const char* field);
    void Complain(const std::string& text);
    int64_t Number(const std::string& value);
    std::function<std::string(const std::string&)> Pattern(const std::string& expression);

    Report& report_;
    ReportDetail& detail_;
    int line_ = 0;
};

bool IsName(std::string_view text) {
    return !text.empty() && text.find_first_not_of(
                                "abcdefghijklmnopqrstuvwxyz"
                                "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                "0123456789_.") == std::string_view::npos;
}

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

void DefinitionReader::Complain(const std::string& text) {
    if (report_.problem.empty())
        report_.problem = report_.file + ", line " + std::to_string(line_) + ": " + text;
}

void DefinitionReader::Line(const std::string& raw) {
    ++line_;
    const std::string line = Trimmed(raw);
    if (line.empty() || line[0] == '#') return;
    const size_t colon = line.find(':');
    if (colon == std::string::npos) return Complain("a line is \"key: value\"");
    const std::string key = Trimmed(line.substr(0, colon));
    const std::string value = Trimmed(line.substr(colon + 1));
    const Words words(value.c_str());
    if (TextKey(key, value) || NumberKey(key, value) || WordsKey(key, words)) return;
    FieldDetail(key, value, words);
}

bool DefinitionReader::TextKey(const std::string& key, const std::string& value) {
    const struct {
        const char* key;
        std::string& text;
    } texts[] = {
        {"name", report_.name},
        {"type", report_.type},
        {"title", detail_.title},
        {"description", detail_.description},
        {"customer", detail_.customer},
        {"from", detail_.table.from},
        {"where", detail_.table.condition},
        {"order", detail_.table.order},
        {"add", detail_.addLink},
        {"table", detail_.form.row.table},
        {"row", detail_.rowId},
        {"list", detail_.listLink},
        {"unique", detail_.form.row.unique},
        {"noun", detail_.form.noun},
        {"naming", detail_.form.naming},
        {"duplicate", detail_.form.duplicate},
    };
    if (key == "key") {
        detail_.table.key = detail_.form.row.key = value;
        return true;
    }
    for (const auto& text : texts) {
        if (key != text.key) continue;
        text.text = value;
        return true;
    }
    return false;
}

int64_t DefinitionReader::Number(const std::string& value) {
    int64_t number = 0;
    if (!ParseInt64(value.c_str(), number)) Complain("\"" + value + "\" is no whole number");
    return number;
}

bool DefinitionReader::NumberKey(const std::string& key, const std::string& value) {
    if (key == "needs")
        detail_.access.needs = static_cast<int>(Number(value));
    else if (key == "refused")
        detail_.access.refused = static_cast<int>(Number(value));
    else if (key == "administrator")
        detail_.access.administrator = value == "yes";
    else if (key == "removable")
        detail_.form.removable = value == "yes";
    else
        return false;
    return true;
}

bool DefinitionReader::WordsKey(const std::string& key, const Words& words) {
    if (key == "column" || key == "hidden")
        Column(words, key == "column");
    else if (key == "link")
        Link(words);
    else if (key == "search")
        Search(words);
    else if (key == "action")
        detail_.table.rowLinks.push_back({words[0], words[1]});
    else if (key == "attributes")
        Attributes(words);
    else if (key == "field")
        Field(words);
    else
        return false;
    return true;
}

void DefinitionReader::Column(const Words& words, bool shown) {
    if (words.argc() != (shown ? 4 : 2))
        return Complain(shown ? "column: NAME STYLE \"HEADING\" \"SQL\"" : "hidden: NAME \"SQL\"");
    SQLTableColumn column;
    column.field = words[0];
    if (!IsName(column.field)) return Complain("\"" + column.field + "\" is no name");
    if (shown) {
        if (!ParseSQLStyle(words[1], column.style))
            return Complain(std::string("there is no style ") + words[1]);
        column.heading = words[2];
    }
    column.sql = words[words.argc() - 1];
    detail_.table.columns.push_back(column);
}

SQLTableColumn* DefinitionReader::FindColumn(const char* field) {
    for (SQLTableColumn& column : detail_.table.columns)
        if (column.field == field) return &column;
    Complain(std::string("there is no column ") + field + " above");
    return nullptr;
}

void DefinitionReader::Link(const Words& words) {
    if (SQLTableColumn* column = FindColumn(words[0])) column->link = words[1];
}

void DefinitionReader::Search(const Words& words) {
    for (int i = 0; i < words.argc(); ++i)
        if (SQLTableColumn* column = FindColumn(words[i])) column->searched = true;
}

void DefinitionReader::Attributes(const Words& words) {
    if (words.argc() != 4) return Complain("attributes: TABLE OWNER NAME VALUE");
    detail_.form.row.attributes = {words[0], words[1], words[2], words[3]};
}

void DefinitionReader::Field(const Words& words) {
    if (words.argc() != 4) return Complain("field: NAME TYPE \"LABEL\" COLUMN");
    SQLField field;
    field.name = words[0];
    if (!IsName(field.name)) return Complain("\"" + field.name + "\" is no name");
    if (!ParseSQLFieldType(words[1], field.type))
        return Complain(std::string("there is no type ") + words[1]);
    field.label = words[2];
    constexpr char kAttribute[] = "attribute:";
    field.attribute = strncmp(words[3], kAttribute, strlen(kAttribute)) == 0;
    field.column = field.attribute ? words[3] + strlen(kAttribute) : words[3];
    detail_.form.row.fields.push_back(field);
}

// The check that a text is empty or matches the whole of an extended regular expression.
std::function<std::string(const std::string&)> DefinitionReader::Pattern(
    const std::string& expression) {
    struct Compiled {
        regex_t regex;
        bool valid;
        explicit Compiled(const std::string& text)
            : regex(), valid(regcomp(&regex, text.c_str(), REG_EXTENDED | REG_NOSUB) == 0) {}
        ~Compiled() {
            if (valid) regfree(&regex);
        }
        Compiled(const Compiled&) = delete;
        Compiled& operator=(const Compiled&) = delete;
    };
    const auto compiled = std::make_shared<Compiled>("^(" + expression + ")$");
    if (!compiled->valid) {
        Complain("the pattern is no regular expression");
        return nullptr;
    }
    return [compiled](const std::string& text) -> std::string {
        if (text.empty() || regexec(&compiled->regex, text.c_str(), 0, nullptr, 0) == 0) return "";
        return "This does not have the form that is wanted.";
    };
}

// What belongs to the field above.
void DefinitionReader::FieldDetail(const std::string& key, const std::string& value,
                                   const Words& words) {
    if (detail_.form.row.fields.empty()) return Complain("there is no key " + key);
    SQLField& field = detail_.form.row.fields.back();
    if (key == "option" && words.argc() == 2)
        field.choices.push_back({words[0], words[1]});
    else if (key == "hint")
        field.hint = value;
    else if (key == "complaint")
        field.complaint = value;
    else if (key == "pattern")
        field.check = Pattern(value);
    else if (key == "required")
        field.required = value == "yes";
    else if (key == "length")
        field.maxLength = static_cast<int>(Number(value));
    else if (key == "range" && words.argc() == 2) {
        field.min = Number(words[0]);
        field.max = Number(words[1]);
    } else
        Complain("there is no key " + key + " with such a value");
}

// What a page cannot do without.
void DefinitionReader::Check() {
    const bool form = report_.type == "Form";
    const bool list = report_.type == "Table" || report_.type == "pdf";
    if (!IsName(report_.name)) Complain("the page needs a name");
    if (!form && !list) return;
    const SQLRowDefinition& row = detail_.form.row;
    const std::pair<bool, const char*> needs[] = {
        {detail_.title.empty(), "title"},
        {detail_.customer.empty(), "customer"},
        {list && detail_.table.from.empty(), "from"},
        {list && detail_.table.key.empty(), "key"},
        {list && detail_.table.columns.empty(), "column"},
        {form && row.table.empty(), "table"},
        {form && row.fields.empty(), "field"},
        {std::any_of(
             row.fields.begin(), row.fields.end(),
             [&](const SQLField& f) { return f.attribute && row.attributes.table.empty(); }),
         "attributes"},
    };
    for (const auto& [missing, key] : needs)
        if (missing) Complain(std::string("the page needs the key ") + key);
}

std::vector<std::string> DefinitionFiles(const char* folder) {
    std::vector<std::string> names;
    DIR* dir = opendir(folder);
    if (dir == nullptr) return names;
    while (const dirent* entry = readdir(dir)) {
        const std::string name = entry->d_name;
        if (name[0] != '.' && name.ends_with(kSuffix)) names.push_back(name);
    }
    closedir(dir);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

Report::Report(std::string file_, const std::string& text) : file(std::move(file_)) {
    DefinitionReader reader(*this);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        reader.Line(line);
    reader.Check();
    detail.table.title = detail.title;
}

void ReportBuildPages(WebContext& ctx) {
    if (!ctx.reports.empty()) return;
    const UString folder = RootPath(ctx.dirname.c_str());
    for (const std::string& name : DefinitionFiles(folder.c_str())) {
        std::ifstream file(std::string(folder.c_str()) + "/" + name);
        const std::string text((std::istreambuf_iterator<char>(file)),
                               std::istreambuf_iterator<char>());
        if (!file.is_open()) ConsoleReport("ReportBuildPages: cannot read %s\n", name.c_str());
        auto* report = new Report(name, text);
        if (!report->problem.empty())
            ConsoleReport("ReportBuildPages: %s\n", report->problem.c_str());
        ctx.reports.Append(report);
    }
}
