// Stored pictures: each description of tests/pictures looks as its picture does. After a change
// that is meant, look at the new pictures (build/lumora-chart draws them, 400 pixels wide and 240
// high) and store them.
#include <doctest/doctest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "unit/portal/chart/DrawnChart.h"
#include "unit/portal/chart/ReadPicture.h"

namespace {

// The mean difference of two pictures' channels, 0 to 255. Letters may be set a little otherwise by
// another version of the font library: the pictures are compared in cells of 4 by 4 pixels.
double Difference(const Picture& a, const Picture& b) {
    constexpr int kCell = 4;
    double sum = 0;
    int cells = 0;
    for (int y = 0; y + kCell <= a.height; y += kCell)
        for (int x = 0; x + kCell <= a.width; x += kCell)
            for (int channel = 0; channel < 3; ++channel) {
                int difference = 0;
                for (int i = 0; i < kCell * kCell; ++i) {
                    const size_t at =
                        3 * (static_cast<size_t>(y + i / kCell) * a.width + x + i % kCell) +
                        channel;
                    difference += a.pixels[at] - b.pixels[at];
                }
                sum += std::abs(difference) / static_cast<double>(kCell * kCell);
                ++cells;
            }
    return sum / cells;
}

std::string Whole(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace

TEST_CASE("charts look as their stored pictures") {
    constexpr double kAlike = 0.6;
    std::set<std::filesystem::path> descriptions;
    for (const auto& entry : std::filesystem::directory_iterator(LUMORA_PICTURES))
        if (entry.path().extension() == ".json") descriptions.insert(entry.path());
    REQUIRE(descriptions.size() >= 6);
    Picture last;
    for (const auto& path : descriptions) {
        CAPTURE(path);
        const DrawnChart drawn(Whole(path), 400, 240);
        REQUIRE(drawn.problem == "");
        const Picture got = ReadPicture(drawn.Path());
        const Picture stored = ReadPicture(std::filesystem::path(path).replace_extension("png"));
        REQUIRE(stored.width == 400);
        REQUIRE(got.height == stored.height);
        CHECK(Difference(got, stored) < kAlike);
    }
}

TEST_CASE("the comparison sees a bar that is missing or of another colour") {
    const auto drawn = [](const char* values, const char* colour) {
        const DrawnChart chart("{'elements': [{'type': 'bar_2d', 'colour': '" +
                                   std::string(colour) + "', 'values': " + values +
                                   "}], 'y_axis': {'max': 10, 'steps': 5}}",
                               400);
        return ReadPicture(chart.Path());
    };
    const Picture plain = drawn("[5, 5, 5, 5, 5, 5, 5, 5]", "#67d0dd");
    CHECK(Difference(plain, drawn("[5, 5, 5, 5, 5, 5, 5, 5]", "#67d0dd")) == 0);
    CHECK(Difference(plain, drawn("[5, 5, 5, 5, 0, 5, 5, 5]", "#67d0dd")) > 0.6);
    CHECK(Difference(plain, drawn("[5, 5, 5, 5, 5, 5, 5, 5]", "#57c0cd")) > 0.6);
}
