// Chart descriptions: whatever is read is drawn or refused, and a refused one leaves no file.
#include <unistd.h>

#include <vector>

#include "fuzz/FuzzInput.h"
#include "portal/chart/PngChart.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string file = "/tmp/chart-fuzz." + std::to_string(getpid()) + ".png";
    const std::string text = TextOf(data, size);
    // What follows the first zero byte chooses the size, small enough to draw many a second.
    const bool hasSize = size > text.size() + 2;
    const int width = hasSize ? data[text.size() + 1] + 1 : 200;
    const int height = hasSize ? data[text.size() + 2] + 1 : 100;
    std::vector<char> bytes(text.c_str(), text.c_str() + text.size() + 1);
    bytes.shrink_to_fit();
    unlink(file.c_str());
    bool drawn = false;
    try {
        JsonObj json(bytes.data(), nullptr, 0);
        const PngChart chart(&json, width, height, file.c_str(), "https://portal.example.com/");
        UString name, map;
        chart.GetMap(name, map);
        const std::string areas = map.c_str();
        Require(areas.starts_with("<map name=\"map_") && areas.ends_with("</map>\r\n"),
                "a map is whole");
        drawn = true;
    } catch (const char*) {
    }
    Require(drawn == (access(file.c_str(), F_OK) == 0), "a file is there when a chart was drawn");
    unlink(file.c_str());
    return 0;
}
