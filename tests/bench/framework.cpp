// The framework's own costs, each shown at one, two and four times the input, so that what is not
// linear stands out; and the JSON reader beside RapidJSON's in-situ reader on the same text. Prints
// a table line a figure: what, ratio, aim, detail.
#include <rapidjson/document.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "cgiFramework/JsonObj.h"
#include "cgiFramework/WebContext.h"
#include "cgiFramework/WebPage.h"

namespace {

constexpr int kRounds = 7;

double Seconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// Runs it in a process of its own, as a request is: what an earlier run left in the heap plays no
// part.
double InProcess(const std::function<double()>& run) {
    int ends[2];
    if (pipe(ends) != 0) exit(2);
    if (fork() == 0) {
        const double seconds = run();
        _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 2);
    }
    double seconds = 0;
    if (read(ends[0], &seconds, sizeof seconds) != sizeof seconds) exit(2);
    wait(nullptr);
    close(ends[0]);
    close(ends[1]);
    return seconds;
}

// The shortest of several runs: what the work costs when nothing else is in its way.
double Best(const std::function<double()>& run) {
    double best = InProcess(run);
    for (int round = 1; round < kRounds; ++round)
        best = std::min(best, InProcess(run));
    return best;
}

void Row(const char* what, double ratio, const char* aim, const std::string& detail) {
    printf("%-58s %8.3f   aim %-8s %s\n", what, ratio, aim, detail.c_str());
}

std::string Milliseconds(const std::vector<double>& seconds) {
    std::string text;
    char number[32];
    for (const double s : seconds) {
        snprintf(number, sizeof number, "%s%.1f", text.empty() ? "" : ", ", s * 1e3);
        text += number;
    }
    return text + " ms at 1x, 2x, 4x";
}

// `run` answers the seconds for a size; the ratio is what four times the input costs, for its size,
// against once.
void Linear(const char* what, size_t size, const std::function<double(size_t)>& run) {
    std::vector<double> seconds;
    for (const size_t factor : {1, 2, 4})
        seconds.push_back(Best([&] { return run(size * factor); }));
    Row(what, seconds[2] / seconds[0] / 4, "~ 1", Milliseconds(seconds));
}

std::string Query(size_t bytes) {
    std::string query;
    for (int i = 0; query.size() < bytes; ++i)
        query += "name" + std::to_string(i) + "=some+%41value%20" + std::to_string(i) + "&";
    return query;
}

std::string Json(size_t bytes) {
    std::string text = "[";
    for (int i = 0; text.size() < bytes; ++i)
        text += "{\"name\": \"Queue " + std::to_string(i) + "\", \"calls\": " + std::to_string(i) +
                ", \"rate\": 0.75, \"open\": true, \"waits\": [1, 2, 3.5, null]},\n";
    return text + "{}]";
}

double DecodeQuery(size_t bytes) {
    const std::string query = Query(bytes);
    WebContext ctx("/Norvane/none", nullptr);
    return Seconds([&] { ctx.ScanWebArguments(query.c_str()); });
}

double RenderRows(size_t rows) {
    WebContext ctx("/Norvane/none", nullptr);
    WebTable table("class='list'");
    for (size_t i = 0; i < rows; ++i) {
        WebRow& row = table.Adopt(new WebRow("class='listrow'"));
        for (int cell = 0; cell < 4; ++cell)
            row.Adopt(new WebCell("")).Add(new WebValue("%zu", i));
    }
    UStringWebRender out;
    return Seconds([&] { table.Render(ctx, &out); });
}

double ReadJson(size_t bytes) {
    std::string text = Json(bytes);
    return Seconds([&] { JsonObj whole(text.data(), nullptr, 0); });
}

double ReadRapidJson(size_t bytes) {
    std::string text = Json(bytes);
    return Seconds([&] {
        rapidjson::Document whole;
        whole.ParseInsitu(text.data());
    });
}

}  // namespace

int main() {
    constexpr size_t kMegabyte = 1 << 20;
    Linear("decode a query or body of 1 MB", kMegabyte, DecodeQuery);
    Linear("render 100,000 table rows of 4 cells", 100000, RenderRows);
    Linear("read a JSON text of 1 MB", kMegabyte, ReadJson);
    std::vector<double> ratios;
    for (int round = 0; round < kRounds; ++round)
        ratios.push_back(InProcess([] { return ReadRapidJson(kMegabyte); }) /
                         InProcess([] { return ReadJson(kMegabyte); }));
    std::sort(ratios.begin(), ratios.end());
    Row("speed of reading 1 MB of JSON / RapidJSON in place", ratios[kRounds / 2], ">= 0.5", "");
}
