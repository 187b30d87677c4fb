// LDAPWebTable.h: entries of the directory as a list in the page, sorted by a click on a heading.
#pragma once

#include <string>
#include <vector>

#include "cgiFramework/SQLCell.h"
#include "cgiFramework/WebPage.h"

class LDAPRow;
class LDAPSession;
class LDAPTable;

struct LDAPTableColumn {
    std::string field;  // of the entry; also its name in URLs
    std::string heading;
    SQLStyle style = SQLStyle::kText;
    std::string link =
        {};  // where its cells lead: arguments of this program in which [field]
             // stands for the entry's value, "pagename=a.page&index=[GUID]"; or empty
};

struct LDAPTableDefinition {
    std::string title;
    std::string base;    // below which entry; empty: the whole directory
    std::string filter;  // which entries; texts from elsewhere stand in it behind SlashHex
    std::string order;   // field of the first sorting; "-" in front: descending
    std::vector<LDAPTableColumn> columns;  // at least one
};

// The list: arguments "sort" (a column's field) and "desc" (not empty: descending) order it; what
// makes no sense counts as not given. A directory that does not answer is told in its place. Every
// text of the directory is escaped here.
class LDAPWebTable : public WebItem {
  public:
    // Searches.
    LDAPWebTable(WebContext& ctx, LDAPSession& session, const LDAPTableDefinition& definition);

  private:
    void ChooseOrder();
    void SortRows(LDAPTable& found) const;
    void AddHeadings(WebTable& table);
    void AddRow(WebTable& table, LDAPRow& entry, bool odd);
    std::string HeadingUrl(const LDAPTableColumn& column) const;

    WebContext& ctx_;
    const LDAPTableDefinition& definition_;
    const LDAPTableColumn* sort_ = nullptr;
    bool descending_ = false;
};
