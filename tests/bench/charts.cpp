// The cost of drawing: the same chart 250, 500 and 1,000 times in one process, and charts of more
// and more bars. Prints a table line a figure: what, ratio, aim, detail.
#include <unistd.h>

#include <string>

#include "bench/Timing.h"
#include "portal/chart/PngChart.h"

namespace {

std::string Description(size_t bars) {
    std::string labels, values;
    for (size_t i = 0; i < bars; ++i) {
        const std::string comma = i > 0 ? "," : "";
        labels += comma + "{\"text\": \"User " + std::to_string(i) + "\", \"size\": 10}";
        values += comma + std::to_string(i * 37 % 100);
    }
    return "{\"title\": {\"text\": \"Calls by user\", \"style\": \"{font-size: 20px}\"}, "
           "\"x_axis\": {\"labels\": {\"rotate\": \"diagonal\", \"labels\": [" +
           labels +
           "]}, \"tick-height\": 4}, \"y_axis\": {\"max\": 100, \"steps\": 20}, \"elements\": "
           "[{\"type\": \"bar_glass\", \"colour\": \"#67d0dd\", \"text\": \"Calls\", \"values\": [" +
           values + "]}]}";
}

double Draw(size_t charts, size_t bars) {
    const std::string file = "/tmp/bench-charts." + std::to_string(getpid()) + ".png";
    const double seconds = Seconds([&] {
        for (size_t i = 0; i < charts; ++i) {
            std::string text = Description(bars);
            JsonObj json(text.data(), nullptr, 0);
            const PngChart chart(&json, 600, 300, file.c_str(), "");
        }
    });
    unlink(file.c_str());
    return seconds;
}

}  // namespace

int main() {
    Linear("draw 250, 500, 1,000 charts in one process", 250,
           [](size_t charts) { return Draw(charts, 20); });
    Linear("draw a chart of 2,500, 5,000, 10,000 bars", 2500,
           [](size_t bars) { return Draw(1, bars); });
}
