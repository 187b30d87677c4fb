#include "cgiFramework/SQLTableFile.h"

namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
constexpr char kLineEnd[] = "\r\n";

// A number, such as a telephone number, is none of the formulas that begin like one.
bool LooksLikeFormula(std::string_view text) {
    if (text.empty() || std::string_view("=+-@\t\r").find(text[0]) == std::string_view::npos)
        return false;
    return text.find_first_not_of("+-.0123456789 ") != std::string_view::npos ||
           text.find_first_of("0123456789") == std::string_view::npos;
}

// Calls `use(column index, column)` for each column that is shown.
template <class Use>
void ForEachShown(const SQLTableDefinition& definition, Use use) {
    for (size_t i = 0; i < definition.columns.size(); ++i)
        if (!definition.columns[i].heading.empty()) use(static_cast<int>(i), definition.columns[i]);
}

}  // namespace

void AppendCSVField(std::string& out, std::string_view text) {
    const bool formula = LooksLikeFormula(text);
    const bool quoted = formula || text.find_first_of(",\"\r\n") != std::string_view::npos;
    if (quoted) out += '"';
    if (formula) out += '\'';
    for (const char c : text) {
        if (c == '"' || c == '%') out += c;
        out += c;
    }
    if (quoted) out += '"';
}

std::string SQLTableCSV(SQLSession& db, const SQLTableQuery& query) {
    std::string csv = kByteOrderMark;
    const char* separator = "";
    ForEachShown(query.definition(), [&](int, const SQLTableColumn& column) {
        csv += separator;
        AppendCSVField(csv, column.heading);
        separator = ",";
    });
    csv += kLineEnd;
    db.Stream(query.AllStatement());
    while (db.NextRow()) {
        separator = "";
        ForEachShown(query.definition(), [&](int i, const SQLTableColumn& column) {
            csv += separator;
            AppendCSVField(csv, SQLCellText(column.style, db.View(i)));
            separator = ",";
        });
        csv += kLineEnd;
    }
    return csv;
}

PdfTable SQLTablePdf(SQLSession& db, const SQLTableQuery& query) {
    PdfTable table;
    table.title = query.definition().title;
    if (!query.search().empty()) table.subtitle = "Search: " + query.search();
    ForEachShown(query.definition(), [&](int, const SQLTableColumn& column) {
        table.columns.push_back({column.heading, IsRightAligned(column.style)});
    });
    db.Stream(query.AllStatement());
    while (db.NextRow()) {
        std::vector<std::string>& row = table.rows.emplace_back();
        ForEachShown(query.definition(), [&](int i, const SQLTableColumn& column) {
            row.push_back(SQLCellText(column.style, db.View(i)));
        });
    }
    return table;
}
