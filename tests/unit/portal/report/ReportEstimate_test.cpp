#include "portal/report/ReportEstimate.h"

#include <vector>

#include <doctest/doctest.h>

TEST_CASE("a plan's tables multiply within a SELECT, and its SELECTs add up") {
    const struct {
        const char* what;
        std::vector<PlannedTable> tables;
        uint64_t rows;
    } cases[] = {
        {"nothing to read", {}, 0},
        {"one table", {{1, false, 2000000, 50}}, 2000000},
        {"each row kept asks the next table", {{1, false, 1000, 10}, {1, false, 3, 100}}, 1300},
        {"a derived table is read once, where it is made",
         {{1, true, 2000000, 100}, {2, false, 2000000, 100}},
         2000000},
        {"rows of a derived table ask the next one",
         {{1, true, 500, 100}, {1, false, 1, 100}, {2, false, 9000, 100}},
         9500},
        {"both halves of a union", {{1, false, 700, 100}, {2, false, 800, 100}}, 1500},
        {"less than a row is one", {{1, false, 10, 1}, {1, false, 5, 100}}, 15},
        {"a huge product stays a number",
         {{1, false, 1e12, 100}, {1, false, 1e12, 100}, {1, false, 1e12, 100}},
         1000000000000000},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        PlanRows plan;
        for (const PlannedTable& table : c.tables)
            plan.Add(table);
        CHECK(plan.rows() == c.rows);
    }
}

TEST_CASE("an estimate is told in words") {
    const struct {
        uint64_t rows;
        const char* text;
    } cases[] = {
        {1, "about 1 row, about 1 second"},
        {250000, "about 250,000 rows, about 1 second"},
        {5200000, "about 5.2 million rows, about 6 seconds"},
        {12345678, "about 12 million rows, about 13 seconds"},
        {150000000, "about 150 million rows, about 3 minutes"},
    };
    for (const auto& c : cases)
        CHECK(EstimateText(c.rows) == c.text);
}
