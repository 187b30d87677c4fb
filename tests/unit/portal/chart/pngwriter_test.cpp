#include "portal/chart/pngwriter.h"

#include <doctest/doctest.h>

#include <climits>
#include <functional>
#include <string>

#include "portal/chart/ChartText.h"
#include "unit/cgiFramework/TestRequest.h"
#include "unit/portal/chart/ReadPicture.h"

namespace {

constexpr int kSide = 8;
constexpr unsigned kWhite = 0xFFFFFF;
constexpr unsigned kRed = 0xFF0000;

Picture Drawn(const std::function<void(pngwriter&)>& draw) {
    TestRequest request;
    const std::string path = (request.root / "p.png").string();
    pngwriter png(kSide, kSide, 1.0, path.c_str());
    // The exponent that readers expect: they hand out the channels as they were written.
    png.setgamma(0.45455);
    draw(png);
    png.close();
    return ReadPicture(path);
}

int CountOf(const Picture& picture, unsigned rgb) {
    int count = 0;
    for (int y = 1; y <= kSide; ++y)
        for (int x = 1; x <= kSide; ++x)
            count += picture.At(x, y) == rgb;
    return count;
}

}  // namespace

TEST_CASE("corners and ends belong to what is drawn, and what lies outside is not") {
    const Picture square = Drawn([](pngwriter& png) {
        png.filledsquare(3, 4, 2, 2, 65535, 0, 0);  // corners in either order
        png.filledsquare(-9, -9, 0, 0, 0, 0, 0);
        png.filledsquare(9, 9, INT_MAX, INT_MAX, 0, 0, 0);
    });
    REQUIRE(square.width == kSide);
    CHECK(square.At(2, 2) == kRed);
    CHECK(square.At(3, 4) == kRed);
    CHECK(square.At(2, 5) == kWhite);
    CHECK(CountOf(square, kRed) == 6);
    CHECK(CountOf(square, kWhite) == kSide * kSide - 6);

    const Picture line = Drawn([](pngwriter& png) {
        png.line(INT_MIN, 1, INT_MAX, 1, 65535, 0, 0);
        png.line(1, 2, 8, 9, 65535, 0, 0);
        png.line(INT_MIN, INT_MIN, INT_MAX, INT_MAX - 5, 0, 0, 0);
        png.line(INT_MAX, 0, INT_MAX - 1, INT_MAX, 0, 0, 0);
    });
    CHECK(line.At(8, 1) == kRed);
    CHECK(line.At(1, 2) == kRed);
    CHECK(line.At(7, 8) == kRed);

    const Picture blend = Drawn([](pngwriter& png) {
        png.plot_blend(1, 8, 0.5, 0, 0, 0xFF00);
        png.plot_blend(8, 1, 7.0, 0xFF00, 0, 0);
        png.plot_blend(0, 1, 1, 0, 0, 0);
        png.plot_blend(9, 9, 1, 0, 0, 0);
    });
    CHECK(blend.At(1, 8) == 0x8080FF);
    CHECK(blend.At(8, 1) == kRed);
    CHECK(CountOf(blend, kWhite) == kSide * kSide - 2);
}

TEST_CASE("a text stands on its base line and may turn") {
    // "l" is a stroke: upright it is higher than wide, and turned by a quarter it is wider than
    // high.
    const auto extent = [](double angle, int x, int y) {
        const Picture text = Drawn([&](pngwriter& png) {
            png.plot_text(kVeraPath, 4, x, y, angle, "l", 0, 0, 0);
            png.plot_text(kVeraPath, 200, -4000, 90000, 1.0, "outside", 0, 0, 0);
        });
        int columns = 0, rows = 0;
        for (int a = 1; a <= kSide; ++a) {
            bool column = false, row = false;
            for (int b = 1; b <= kSide; ++b) {
                column = column || text.At(a, b) != kWhite;
                row = row || text.At(b, a) != kWhite;
            }
            columns += column;
            rows += row;
        }
        return std::pair(columns, rows);
    };
    const auto [wide, high] = extent(0, 3, 2);
    CHECK(wide <= 2);
    CHECK(high >= 4);
    const auto [turnedWide, turnedHigh] = extent(1.5707963267948966, 7, 2);
    CHECK(turnedWide >= 4);
    CHECK(turnedHigh <= 2);
}

TEST_CASE("the file says what it is, and a file that cannot be written is a thrown text") {
    TestRequest request;
    const std::string path = (request.root / "p.png").string();
    pngwriter png(kSide, kSide, 1.0, path.c_str());
    png.setgamma(0.45);
    png.settext("Calls \xC3\xA4", "Norvane Ltd.", "Report Chart", "Lumora 1.0");
    png.close();
    const std::string bytes = request.Read("p.png");
    using namespace std::string_literals;
    CHECK(bytes.find("gAMA\x00\x00\xAF\xC8"s) != std::string::npos);  // 45000
    CHECK(bytes.find("iTXtTitle\0\0\0\0\0Calls \xC3\xA4"s) != std::string::npos);
    CHECK(bytes.find("tEXtAuthor\0Norvane Ltd."s) != std::string::npos);
    CHECK(bytes.find("tEXtDescription\0Report Chart"s) != std::string::npos);
    CHECK(bytes.find("tEXtSoftware\0Lumora 1.0"s) != std::string::npos);

    CHECK_THROWS_AS(pngwriter(kSide, kSide, 1.0, "/no/such/folder/p.png").close(), const char*);
    CHECK_THROWS_AS(pngwriter(4001, 1, 1.0, path.c_str()), const char*);
    CHECK_THROWS_AS(pngwriter(1, 0, 1.0, path.c_str()), const char*);
}
