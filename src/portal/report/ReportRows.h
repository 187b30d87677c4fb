// ReportRows.h: the rows of a report on their way from the server to all who want to see them.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "cgiFramework/SQLSession.h"
#include "portal/report/ReportFacts.h"
#include "portal/report/ReportRowReader.h"

// Runs a report's query; the rows stay on the server until they are read. Failures throw the
// server's message.
class ReportRows {
  public:
    // The context's connection must have no unfinished result until Read has returned.
    ReportRows(PortalContext& ctx, const std::string& query);

    // The result's columns. The names live as long as this object.
    const std::vector<std::string_view>& names() const { return names_; }
    // Hands every row to each of the readers, and tells who waits for the report how many there
    // are so far.
    void Read(const std::vector<ReportRowReader*>& readers);
    // What the query cost; known once its rows were read.
    const ReportQueryCost& cost() const { return cost_; }

  private:
    ReportQueryCost cost_;
    SQLSession cursor_;
    std::vector<std::string_view> names_;
};
