// ReportLinks.h: where the parts of a result lead: the same run in another order, form or part, and
// the pages behind its cells.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "portal/report/ReportView.h"

class LumoraReportFilter;
class PortalContext;
struct LumoraSQLColumnDescription;
struct ReportColumn;
struct ReportDefinition;

// All addresses are plain text: they are escaped where they are written into an attribute.
class ReportLinks {
  public:
    ReportLinks(PortalContext& ctx, const ReportDefinition& definition,
                const LumoraReportFilter& filter, const ReportView& view);

    // The run as it is shown now, without a page of it.
    const std::string& here() const { return here_; }
    std::string Sorted(const char* field, bool descending) const;
    std::string Page(uint64_t page) const;
    std::string RowsAPage(uint64_t rows) const;
    // What comes in front of and behind the details of a link from a cell of this column. The
    // details come first, so that they win over a criterion of the same name.
    std::string CellPage(const LumoraSQLColumnDescription& column) const;
    std::string CellCriteria(const LumoraSQLColumnDescription& column) const;

  private:
    std::string With(const char* sort, bool descending, uint64_t rows) const;

    std::string program_;   // with the session
    std::string run_;       // the report with its criteria
    std::string criteria_;  // "&name=value..."
    std::string report_;
    const ReportView& view_;
    std::string here_;
};

// The link of one column's cells, worked out once for all of them.
class ReportCellLink {
  public:
    // `names` are the result's columns. A detail that names another throws a text. Null `links`, or
    // a column without a page, means no link.
    ReportCellLink(const ReportLinks* links, const ReportColumn& column,
                   const std::vector<std::string_view>& names);
    // Does a cell of this value lead anywhere? One that counts nothing has nothing behind it.
    bool Leads(std::string_view raw) const;
    // Appends the link's opening tag.
    void AppendOpen(std::string& html, const std::vector<std::string_view>& row) const;
    // The address as plain text.
    std::string Url(const std::vector<std::string_view>& row) const;

  private:
    struct Piece {
        std::string text;
        std::string html;  // the same in an attribute
        int field;         // whose value follows, or -1
    };
    std::vector<Piece> pieces_;
    bool counts_ = false;  // zero leads nowhere
};
