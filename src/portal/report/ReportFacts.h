// ReportFacts.h: what stands under a result: what was counted, what it cost the database, and how
// fresh the data is.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "portal/report/ReportCell.h"
#include "portal/report/ReportRowReader.h"

class PortalContext;

// Adds up each row's share of calls, legs and transfers, where a report's query returns them.
class ReportCallCounts : public ReportRowReader {
  public:
    explicit ReportCallCounts(const std::vector<std::string_view>& names);
    // Does the query return any of them?
    bool any() const { return calls_.field >= 0; }
    void AddRow(const std::vector<std::string_view>& row) override;
    // "1,234 calls, 1,500 legs, 266 transfers": legs and transfers only where they tell more than
    // the calls. Empty when the query returns no calls.
    std::string Text() const;

  private:
    struct Count {
        int field;  // of the result, or -1
        ReportDecimal sum;
    };
    Count calls_;
    Count legs_;
    Count transfers_;
};

// Measures one query from its start to its last row.
class ReportQueryCost {
  public:
    // Begins. The connection is free for a query of this one's own.
    explicit ReportQueryCost(PortalContext& ctx);
    // Ends; the connection is free again.
    void Finish();

    double seconds() const { return seconds_; }
    uint64_t rowsRead() const { return rowsRead_; }

  private:
    uint64_t ReadRowsRead() const;

    PortalContext& ctx_;
    int64_t start_;  // microseconds
    double seconds_ = 0;
    uint64_t rowsRead_;
};

// How fresh the data is, by the server's clock and in the user's zone.
struct ReportDataAge {
    std::string now;  // "yyyy-mm-dd hh:mm:ss"
    std::string
        latest;  // start of the latest logged call that the caller's search goes over; or empty
    int64_t seconds = 0;  // since then

    // Throws the server's message.
    static ReportDataAge Read(PortalContext& ctx);
    // "2 minutes", "3 days".
    std::string AgeText() const;
};
