// The framework's own costs, each shown at one, two and four times the input, so that what is not
// linear stands out; and the JSON reader beside RapidJSON's in-situ reader on the same text. Prints
// a table line a figure: what, ratio, aim, detail.
#include <rapidjson/document.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bench/Timing.h"
#include "cgiFramework/JsonObj.h"
#include "cgiFramework/WebContext.h"
#include "cgiFramework/WebPage.h"

namespace {

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
