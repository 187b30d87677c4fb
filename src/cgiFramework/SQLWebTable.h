// SQLWebTable.h: a query's rows as a list in the page: sorted by a click on a heading, searched and
// turned page by page.
#pragma once

#include <string>
#include <vector>

#include "cgiFramework/SQLSession.h"
#include "cgiFramework/SQLTableQuery.h"
#include "cgiFramework/WebPage.h"

// A link above the list. `url` is a whole URL, not escaped.
struct SQLListAction {
    std::string caption;
    std::string url;
};

// The list: a search box when a column is searched, the actions and links to the list as a file
// ("csv=true" and "pdf=true", which the page answers: SQLTableFile.h), the rows of one page, and
// the way to the other pages. Every text of the database is escaped here.
class SQLWebTable : public WebItem {
  public:
    // Runs the query. Throws the server's message.
    SQLWebTable(WebContext& ctx, SQLSession& db, SQLTableQuery query,
                const std::vector<SQLListAction>& actions);

  private:
    void AddSearch();
    void AddActions(const std::vector<SQLListAction>& actions);
    void AddHeadings(WebTable& table);
    void AddRow(const SQLSession& db, WebTable& table, bool odd);
    void AddRowLinks(const SQLSession& db, WebRow& row);
    void AddPager(uint64_t rows);
    void AddPageLink(WebItem& pager, int64_t page, const char* caption);

    // The present list with another order or page.
    std::string Url(const std::string& sort, bool descending, int64_t page) const;
    std::string RowUrl(const SQLSession& db, const std::string& link) const;

    WebContext& ctx_;
    SQLTableQuery query_;
    std::string base_;  // URL of the list without search, order and page
};
