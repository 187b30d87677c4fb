#include "common/SqlText.h"

#include <algorithm>

#include "common/UStringX.h"

namespace {

std::string Escaped(const char* text) {
    UString escaped;
    escaped.EscapeMySQL(text);
    return escaped.c_str();
}

}  // namespace

SqlQuoted::SqlQuoted(const char* text) : escaped_(Escaped(text)) {}

SqlQuoted::SqlQuoted(const UString& text) : SqlQuoted(text.c_str()) {}

SqlText SqlText::FromTemplate(std::string finished) {
    SqlText statement;
    statement.text_ = std::move(finished);
    return statement;
}

void SqlText::Fill(std::string_view format, const std::string* values) {
    while (!format.empty()) {
        const size_t plain = std::min(format.find('%'), format.size());
        text_ += format.substr(0, plain);
        format.remove_prefix(plain);
        if (format.empty()) return;
        const SqlConversion conversion = ReadSqlConversion(format);
        if (conversion.kind == SqlConversion::kPerCent)
            text_ += '%';
        else
            text_ += *values++;
        format.remove_prefix(conversion.length);
    }
}
