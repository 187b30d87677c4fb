#include "portal/report/ReportProgress.h"

#include <doctest/doctest.h>

#include <cstring>
#include <string>

#include "portal/background/BackgroundFiles.h"
#include "portal/report/ReportSpool.h"
#include "unit/cgiFramework/TestRequest.h"

TEST_CASE("progress is told in words that fit the numbers") {
    const struct {
        int64_t seconds;
        uint64_t rows;
        const char* text;
    } cases[] = {
        {0, 0, "0 seconds so far"},
        {1, 1, "1 second so far, 1 row"},
        {12, 3400, "12 seconds so far, 3,400 rows"},
        {1000, 999, "1,000 seconds so far, 999 rows"},
        {2, 1234567, "2 seconds so far, 1,234,567 rows"},
        {-1, 0, "0 seconds so far"},
    };
    for (const auto& c : cases)
        CHECK(strcmp(ProgressText(c.seconds, c.rows).c_str(), c.text) == 0);
}

TEST_CASE("a spool gives back what was written, whatever went to its file") {
    TestRequest request;
    PrepareBackgroundFolder();
    // Below, at and beyond what stays in memory, in small and large pieces.
    for (const size_t pieces : {size_t{0}, size_t{1}, size_t{40}, size_t{400}}) {
        CAPTURE(pieces);
        ReportSpool spool;
        std::string expected;
        for (size_t i = 0; i < pieces; ++i) {
            const std::string large(i % 3 == 0 ? 32'000 : 700, static_cast<char>('a' + i % 26));
            spool.Write(large);
            spool.printf("<%zu>", i);
            expected += large + "<" + std::to_string(i) + ">";
        }
        UStringWebRender out;
        spool.SendTo(out);
        CHECK(out.output == expected.c_str());
        CHECK(std::filesystem::is_empty(request.root / "Norvane/fifos"));
    }
}
