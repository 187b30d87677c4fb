// The cost of charts: a description of more and more points written; the same chart drawn 250, 500
// and 1,000 times in one process, and charts of more and more bars. Prints a table line a figure:
// what, ratio, aim, detail.
#include <unistd.h>

#include <string>

#include "bench/Timing.h"
#include "portal/chart/OpenFlashGraph.h"
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

double Describe(size_t points) {
    constexpr int kSeries = 4;
    WebContext ctx("/Norvane/none", nullptr);
    OpenFlashGraph graph(900, 320, "Calls by user", "User", "Calls", "chart");
    for (int i = 0; i < kSeries; ++i) {
        auto& series = graph.AddDataSeries(
            std::make_unique<OpenFlashGraphDataSeries>("Calls", "#67d0dd", "bar_stack"));
        for (size_t at = 0; at < points / kSeries; ++at) {
            const std::string number = std::to_string(at);
            series.AddValue(number.c_str(), ("User " + number).c_str(), /*isNumber=*/true);
            series.SetLink(static_cast<int>(at), "/lumora/lumora.cgi?pagename=calllogdrill");
        }
    }
    return Seconds([&] { graph.Describe(ctx); });
}

}  // namespace

int main() {
    Linear("describe a chart of 10,000, 20,000, 40,000 points", 10000, Describe);
    Linear("draw 250, 500, 1,000 charts in one process", 250,
           [](size_t charts) { return Draw(charts, 20); });
    Linear("draw a chart of 2,500, 5,000, 10,000 bars", 2500,
           [](size_t bars) { return Draw(1, bars); });
}
