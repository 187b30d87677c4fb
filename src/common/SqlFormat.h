// SqlFormat.h: the check, made while compiling, of a statement's format against its arguments.
// SqlText.h tells what a format may hold.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

class SqlFragment;
class SqlQuoted;

enum class SqlArgument { kQuoted, kFragment, kInt, kLong, kLongLong, kRefused };

template <class T>
constexpr SqlArgument kSqlArgument = std::is_same_v<T, SqlQuoted>     ? SqlArgument::kQuoted
                                     : std::is_same_v<T, SqlFragment> ? SqlArgument::kFragment
                                     : std::is_same_v<T, int>         ? SqlArgument::kInt
                                     : std::is_same_v<T, long>        ? SqlArgument::kLong
                                     : std::is_same_v<T, long long>   ? SqlArgument::kLongLong
                                                                      : SqlArgument::kRefused;

// One conversion of a format; `length` counts its characters, the per cent sign included.
struct SqlConversion {
    enum Kind { kNone, kPerCent, kText, kInt, kLong, kLongLong } kind;
    size_t length;
};

// Reads the conversion that `rest` begins with; kNone for one that a statement may not use.
constexpr SqlConversion ReadSqlConversion(std::string_view rest) {
    constexpr std::pair<std::string_view, SqlConversion::Kind> kConversions[] = {
        {"%%", SqlConversion::kPerCent},    {"%s", SqlConversion::kText},
        {"%d", SqlConversion::kInt},        {"%i", SqlConversion::kInt},
        {"%ld", SqlConversion::kLong},      {"%li", SqlConversion::kLong},
        {"%lld", SqlConversion::kLongLong}, {"%lli", SqlConversion::kLongLong},
    };
    for (const auto& [spelling, kind] : kConversions)
        if (rest.starts_with(spelling)) return {kind, spelling.size()};
    return {SqlConversion::kNone, 1};
}

// What is wrong with a format for these arguments; null when nothing is.
constexpr const char* SqlFormatProblem(std::string_view format, const SqlArgument* arguments,
                                       size_t count) {
    size_t used = 0;
    char quote = '\0';
    for (size_t i = 0; i < format.size(); ++i) {
        const char c = format[i];
        if (quote != '\0' && quote != '`' && c == '\\') {
            ++i;
        } else if (c == '\'' || c == '"' || c == '`') {
            quote = quote == '\0' ? c : quote == c ? '\0' : quote;
        } else if (c == '%') {
            const SqlConversion conversion = ReadSqlConversion(format.substr(i));
            i += conversion.length - 1;
            if (conversion.kind == SqlConversion::kPerCent) continue;
            if (conversion.kind == SqlConversion::kNone)
                return "unknown conversion; write %% for %";
            if (used == count) return "more conversions than arguments";
            const SqlArgument argument = arguments[used++];
            switch (conversion.kind) {
                case SqlConversion::kInt:
                    if (argument != SqlArgument::kInt) return "%d and %i take an int";
                    break;
                case SqlConversion::kLong:
                    if (argument != SqlArgument::kLong) return "%ld takes a long";
                    break;
                case SqlConversion::kLongLong:
                    if (argument != SqlArgument::kLongLong) return "%lld takes a long long";
                    break;
                default:
                    if (argument == SqlArgument::kFragment) break;
                    if (argument != SqlArgument::kQuoted)
                        return "%s takes SqlQuoted or SqlFragment";
                    if (quote != '\'' && quote != '"') return "SqlQuoted must stand between quotes";
            }
        }
    }
    return used == count ? nullptr : "more arguments than conversions";
}

// Never defined, and not constexpr: a consteval caller that reaches it does not compile.
void RefusedSqlFormat(const char* reason);

// A format that was checked against its arguments while compiling.
template <class... Args>
class SqlFormat {
  public:
    consteval SqlFormat(const char* text) : text_(text) {
        const std::array<SqlArgument, sizeof...(Args)> arguments = {kSqlArgument<Args>...};
        const char* problem = SqlFormatProblem(text, arguments.data(), arguments.size());
        if (problem != nullptr) RefusedSqlFormat(problem);
    }
    const char* text() const { return text_; }

  private:
    const char* text_;
};
