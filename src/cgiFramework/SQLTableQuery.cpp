#include "cgiFramework/SQLTableQuery.h"

#include <algorithm>

#include "cgiFramework/WebContext.h"
#include "common/CommandLine.h"
#include "common/Parse.h"

namespace {

constexpr char kCountSql[] = "SELECT COUNT(*) FROM %s WHERE %s";
constexpr char kRowsSql[] = "SELECT %s FROM %s WHERE %s ORDER BY %s";
constexpr char kPageSql[] = "%s LIMIT %d OFFSET %lld";
constexpr int64_t kMostPages = 1000000;

const char* Given(const WebContext& ctx, const char* name) {
    const WebArgument* argument = ctx.FindWebArgument(name);
    return argument != nullptr ? argument->Text() : "";
}

// The definition's own text: every part of it is the program's or its administrator's.
SqlFragment Own(const std::string& text) {
    return SqlFragment(text);
}

}  // namespace

std::string LikeLiteral(std::string_view text) {
    std::string literal;
    for (const char c : text) {
        if (c == '%' || c == '_' || c == '\\') literal += '\\';
        literal += c;
    }
    return literal;
}

SQLTableQuery::SQLTableQuery(SQLTableDefinition definition, const WebContext& ctx)
    : definition_(std::move(definition)), search_(Given(ctx, "q")) {
    const auto find = [this](std::string_view field) {
        const auto& columns = definition_.columns;
        return static_cast<size_t>(std::find_if(columns.begin(), columns.end(),
                                                [&](const SQLTableColumn& c) {
                                                    return c.field == field && !c.heading.empty();
                                                }) -
                                   columns.begin());
    };
    const char* order = definition_.order.c_str();
    descending_ = *order == '-';
    sort_ = find(descending_ ? order + 1 : order);
    if (sort_ == definition_.columns.size()) sort_ = 0;
    const size_t asked = find(Given(ctx, "sort"));
    if (asked < definition_.columns.size()) {
        sort_ = asked;
        descending_ = *Given(ctx, "desc") != '\0';
    }
    int64_t page = 0;
    if (ParseInt64(Given(ctx, "page"), page)) page_ = std::clamp<int64_t>(page, 1, kMostPages);
}

void SQLTableQuery::SetRows(uint64_t rows) {
    const auto count = static_cast<int64_t>(std::min<uint64_t>(rows, kMostPages * kPageRows));
    pages_ = std::max<int64_t>(1, (count + kPageRows - 1) / kPageRows);
    page_ = std::min(page_, pages_);
}

std::string SQLTableQuery::Condition() const {
    std::string condition = "(" + definition_.condition + ")";
    const CommandLine words(search_.c_str());
    for (int i = 0; i < words.argc(); ++i) {
        const SqlQuoted word(LikeLiteral(words[i]).c_str());
        std::string found;
        for (const SQLTableColumn& column : definition_.columns) {
            if (!column.searched) continue;
            if (!found.empty()) found += " OR ";
            found += SqlText("%s LIKE '%%%s%%'", Own(column.sql), word).c_str();
        }
        if (!found.empty()) condition += " AND (" + found + ")";
    }
    return condition;
}

std::string SQLTableQuery::Rows() const {
    std::string columns;
    for (const SQLTableColumn& column : definition_.columns) {
        if (!columns.empty()) columns += ", ";
        columns += column.sql;
    }
    std::string order = sortColumn().sql;
    if (descending_) order += " DESC";
    order += ", " + definition_.key;
    return SqlText(kRowsSql, Own(columns), Own(definition_.from), Own(Condition()), Own(order))
        .c_str();
}

SqlText SQLTableQuery::CountStatement() const {
    return SqlText(kCountSql, Own(definition_.from), Own(Condition()));
}

SqlText SQLTableQuery::PageStatement() const {
    const long long offset = (page_ - 1) * kPageRows;
    return SqlText(kPageSql, Own(Rows()), kPageRows, offset);
}

SqlText SQLTableQuery::AllStatement() const {
    return SqlText("%s", Own(Rows()));
}
