#include "portal/report/ReportCatalogue.h"

#include <doctest/doctest.h>

TEST_CASE("a report mask allows the categories of its bits") {
    const struct {
        const char* mask;
        int category;
        bool allowed;
    } cases[] = {
        {"", 1, true},  {"", 0, true},   {"2", 1, true},  {"2", 2, false},  {"2", 0, false},
        {"1", 0, true}, {"36", 5, true}, {"0", 1, false}, {"2", -1, false}, {"-1", 64, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.mask);
        CAPTURE(c.category);
        CHECK(IsCategoryAllowed(c.mask, c.category) == c.allowed);
    }
}
