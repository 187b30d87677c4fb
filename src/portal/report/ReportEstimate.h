// ReportEstimate.h: how much a run of a report would read, before it does.
#pragma once

#include <cstdint>

#include "common/UStringX.h"

class LumoraReportQuery;
class PortalContext;

// The rows of tables that the run would read, as the server expects (EXPLAIN); it costs a
// millisecond. 0 when there is no telling, for instance because the statement is wrong: then the
// run itself says so.
uint64_t EstimateRows(PortalContext& ctx, const LumoraReportQuery& query);

// More than this many rows are read only by a request that confirms it; 0: never asked. The setting
// "reportWarnRows", 5,000,000 where it is missing or no number.
uint64_t WarningLimit(const PortalContext& ctx);

// "about 12 million rows, about 12 seconds"
UString EstimateText(uint64_t rows);

// One table of a plan: its rows are read for each row that the tables before it, of the same
// SELECT, give. Rows of a derived table are no table's, but they count for those that follow.
struct PlannedTable {
    int select;
    bool derived;
    double rows;
    double filtered;  // per cent that its own conditions leave
};

// The rows read by the whole plan, its tables in the order of EXPLAIN.
class PlanRows {
  public:
    void Add(const PlannedTable& table);
    uint64_t rows() const;

  private:
    double rows_ = 0;
    double given_ = 1;  // rows that the present SELECT's tables give so far
    int select_ = -1;
};
