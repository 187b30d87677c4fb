// SQLTableQuery.h: what a list shows and in which order, and the statements that read it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cgiFramework/SQLCell.h"
#include "common/SqlText.h"

class WebContext;

// One column of a list. `sql` is ours: nothing of it ever comes from the browser.
struct SQLTableColumn {
    std::string field;    // its name in URLs and links: letters, digits and "_"
    std::string heading;  // empty: read for the links alone, and not shown
    std::string sql;      // the expression
    SQLStyle style = SQLStyle::kText;
    bool searched = false;  // does the search look into it?
    std::string link = {};  // where its cells lead: arguments of this program in which [field]
                            // stands for the row's value, "pagename=a.page&index=[id]"; or empty
};

// A link at the end of each row, as SQLTableColumn::link.
struct SQLRowLink {
    std::string caption;
    std::string link;
};

struct SQLTableDefinition {
    std::string title;
    std::string from;       // tables and joins
    std::string condition;  // which rows there are for this caller at all; never empty
    std::string key;        // expression that tells rows apart, so that pages do not overlap
    std::string order;      // field of the first sorting; "-" in front: descending
    std::vector<SQLTableColumn> columns;
    std::vector<SQLRowLink> rowLinks;
};

// The rows of a list that one request asks for: arguments "q" (every word of it must be found in a
// searched column), "sort" (a field), "desc" (not empty: descending) and "page" (from 1 on). An
// argument that makes no sense counts as not given.
class SQLTableQuery {
  public:
    static constexpr int kPageRows = 25;

    SQLTableQuery(SQLTableDefinition definition, const WebContext& ctx);

    const SQLTableDefinition& definition() const { return definition_; }
    const std::string& search() const { return search_; }
    const SQLTableColumn& sortColumn() const { return definition_.columns[sort_]; }
    bool descending() const { return descending_; }
    int64_t page() const { return page_; }
    // Goes to the last page when there are fewer.
    void SetRows(uint64_t rows);
    int64_t pages() const { return pages_; }

    SqlText CountStatement() const;
    // The columns in their order, of one page or of all rows.
    SqlText PageStatement() const;
    SqlText AllStatement() const;

  private:
    std::string Condition() const;
    std::string Rows() const;

    SQLTableDefinition definition_;
    std::string search_;
    size_t sort_ = 0;
    bool descending_ = false;
    int64_t page_ = 1;
    int64_t pages_ = 1;
};

// A text for a LIKE pattern, in which it stands for itself; to be quoted for SQL afterwards.
std::string LikeLiteral(std::string_view text);
