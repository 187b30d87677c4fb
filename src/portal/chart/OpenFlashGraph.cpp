#include "portal/chart/OpenFlashGraph.h"

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "cgiFramework/WebSession.h"
#include "common/Path.h"
#include "common/ThrowText.h"
#include "kernel/OSConsole.h"
#include "portal/chart/DescriptionWriter.h"

namespace {

constexpr char kFolder[] = "/Norvane/sessions/charts";
constexpr int kChartSeconds = 2 * 60 * 60;

// Sizes of texts and marks are parts of the base, which is 300 but for tall charts of a wallboard.
constexpr int kBase = 300;
constexpr size_t kLongTitle = 51;  // characters

constexpr int kSteps = 5;                   // of the value axis, about
constexpr double kLargestMax = 2000000000;  // what draws the chart reads the axis as an int

constexpr const char* kPieColours[] = {"#9fe481", "#dc95dd", "#f6e785", "#faafa5",
                                       "#67d0dd", "#a885ee", "#ff756d", "#cb7b42"};
constexpr int kPieColourCount = 8;
// The colours of a pie of n slices; row 0 is that of more than seven.
constexpr int kPieOrder[kPieColourCount][kPieColourCount] = {{0, 1, 2, 3, 4, 5, 6, 7},
                                                             {3},
                                                             {3, 4},
                                                             {3, 2, 4},
                                                             {3, 2, 5, 4},
                                                             {3, 2, 1, 5, 4},
                                                             {3, 2, 1, 6, 5, 4},
                                                             {3, 2, 1, 0, 6, 5, 4}};

size_t CountCharacters(const char* text) {
    size_t count = 0;
    for (; *text != '\0'; ++text)
        if ((*text & 0xC0) != 0x80) ++count;
    return count;
}

// The text of a number as a JSON text may hold it: "null" when it is none.
std::string JsonNumber(const char* text) {
    char* end = nullptr;
    const double number = strtod(text, &end);
    if (end == text || *end != '\0' || !std::isfinite(number)) return "null";
    const bool plain = text[strspn(text, "-0123456789.")] == '\0' && *text != '.';
    const char* digits = *text == '-' ? text + 1 : text;
    const bool zeroLed = digits[0] == '0' && digits[1] != '\0' && digits[1] != '.';
    if (plain && !zeroLed && text[strlen(text) - 1] != '.' && *digits != '.') return text;
    char shortest[32];
    snprintf(shortest, sizeof shortest, "%.15g", number);
    return shortest;
}

// Readers find the URL between the quotes, so it holds none itself.
UString LinkText(const char* url) {
    UString quoted = url;
    quoted.ReplaceAll("'", "%27");
    UString text;
    text.Format("navigateTo('%s')", quoted.c_str());
    return text;
}

// The step of an axis that ends at `largest`: 1, 2 or 5 times a power of ten.
double DecimalStep(double largest) {
    const double rough = std::max(largest / kSteps, 1.0);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double digit : {1.0, 2.0, 5.0})
        if (digit * power >= rough) return digit * power;
    return 10 * power;
}

// The same for seconds: of round seconds, minutes and hours, and of days in the decimal way.
double TimeStep(double largest) {
    constexpr int kDay = 86400;
    for (const int step :
         {1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 14400, 21600, 43200, kDay})
        if (step * kSteps >= largest) return step;
    return kDay * DecimalStep(largest / kDay);
}

UString TimeText(long seconds) {
    constexpr long kMinute = 60;
    constexpr long kHour = 60 * kMinute;
    UString text;
    text.Format("%02ld:%02ld:%02ld", seconds / kHour, seconds / kMinute % kMinute,
                seconds % kMinute);
    return text;
}

bool WriteWhole(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(fd, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

}  // namespace

OpenFlashGraph::OpenFlashGraph(int width, int height, const char* title, const char* xLegend,
                               const char* yLegend, const char* id)
    : width_(width),
      height_(height),
      title_(title),
      xLegend_(xLegend),
      yLegend_(yLegend),
      id_(id) {}

void OpenFlashGraph::SetTitle(const char* title) {
    if (!titleLocked_) title_ = title;
}

OpenFlashGraphDataSeries& OpenFlashGraph::AddDataSeries(
    std::unique_ptr<OpenFlashGraphDataSeries> series) {
    series_.push_back(std::move(series));
    return *series_.back();
}

double OpenFlashGraph::getGraphHeight() const {
    double largest = 0;
    for (const auto& series : series_)
        for (int i = 0; i < series->GetCount(); ++i)
            largest = std::max(largest, series->GetNumber(i));
    return largest;
}

double OpenFlashGraph::getStackedGraphHeight() const {
    double largest = 0;
    for (int i = 0; i < PointCount(); ++i) {
        double sum = 0;
        for (const auto& series : series_)
            sum += series->GetNumber(i);
        largest = std::max(largest, sum);
    }
    return largest;
}

int OpenFlashGraph::PointCount() const {
    int count = 0;
    for (const auto& series : series_)
        count = std::max(count, series->GetCount());
    return count;
}

bool OpenFlashGraph::IsStacked() const {
    return !series_.empty() && strcmp(series_[0]->GetType(), "bar_stack") == 0;
}

bool OpenFlashGraph::IsTime() const {
    return yLegend_ == kTimeLegend;
}

int OpenFlashGraph::TextBase(const WebContext& ctx) const {
    const WebArgument* wallboard = ctx.FindWebArgument("wallboard");
    return wallboard != nullptr && *wallboard == "true" && height_ > kBase ? height_ : kBase;
}

// Labels stand upright as long as they have room beside one another.
const char* OpenFlashGraph::Rotation() const {
    constexpr size_t kCharacterWidth = 7;
    constexpr int kMostDiagonal = 40;
    if (series_.empty()) return "horizontal";
    size_t widest = 0;
    for (int i = 0; i < series_[0]->GetCount(); ++i)
        widest = std::max(widest, CountCharacters(series_[0]->GetLabel(i)));
    const size_t count = static_cast<size_t>(series_[0]->GetCount());
    if ((widest + 1) * kCharacterWidth * count <= static_cast<size_t>(std::max(width_, 0)))
        return "horizontal";
    return series_[0]->GetCount() <= kMostDiagonal ? "diagonal" : "vertical";
}

std::string OpenFlashGraph::Describe(const WebContext& ctx) const {
    const int base = TextBase(ctx);
    DescriptionWriter out;
    out.BeginObject();
    DescribeTitle(out, base);
    DescribeLabels(out, base);
    out.Name("elements");
    out.BeginArray();
    if (IsStacked()) {
        DescribeStack(out, base);
    } else {
        for (const auto& series : series_)
            DescribeSeries(out, *series, base);
    }
    out.EndArray();
    DescribeValueAxis(out, base);
    out.EndObject();
    return std::move(out.text());
}

void OpenFlashGraph::DescribeTitle(DescriptionWriter& out, int base) const {
    UString style;
    style.Format("{font-size: %dpx; color:#000000; font-family: Verdana; text-align: center;}",
                 base * (CountCharacters(title_.c_str()) < kLongTitle ? 20 : 14) / kBase);
    out.Name("title");
    out.BeginObject();
    out.StringMember("text", title_.c_str());
    out.StringMember("style", style.c_str());
    out.EndObject();

    style.Format("{color: #000000; font-size: %dpx;}", base / 25);
    for (const auto& [name, legend] : {std::pair("y_legend", &yLegend_), {"x_legend", &xLegend_}}) {
        out.Name(name);
        out.BeginObject();
        out.StringMember("text", legend->c_str());
        out.StringMember("style", style.c_str());
        out.EndObject();
    }
}

void OpenFlashGraph::DescribeLabels(DescriptionWriter& out, int base) const {
    out.Name("x_axis");
    out.BeginObject();
    out.Name("labels");
    out.BeginObject();
    out.StringMember("rotate", Rotation());
    out.Name("labels");
    out.BeginArray();
    for (int i = 0; !series_.empty() && i < series_[0]->GetCount(); ++i) {
        out.BeginObject();
        out.StringMember("text", series_[0]->GetLabel(i));
        out.NumberMember("size", base / 30);
        out.EndObject();
    }
    out.EndArray();
    out.EndObject();
    out.NumberMember("tick-height", base / 75);
    out.StringMember("colour", "#000000");
    out.StringMember("grid_colour", "#00ff00");
    out.EndObject();
}

namespace {

// What every element begins with.
void DescribeHead(DescriptionWriter& out, const OpenFlashGraphDataSeries& series, int base) {
    out.StringMember("type", series.GetType());
    out.StringMember("alpha", "0.9");
    out.StringMember("colour", series.GetColour());
    out.StringMember("text", series.GetName());
    out.NumberMember("font-size", base / 30);
}

void DescribeValue(DescriptionWriter& out, const OpenFlashGraphDataSeries& series, int index) {
    if (series.GetValueType(index) == OpenFlashGraphDataSeries::kNumber)
        out.Raw(JsonNumber(series.GetData(index)));
    else
        out.String(series.GetData(index));
}

// A value alone or, with a link, as an object whose member of that name is the value.
void DescribePoint(DescriptionWriter& out, const OpenFlashGraphDataSeries& series, int index,
                   const char* member) {
    const char* link = series.GetLink(index);
    if (*link == '\0') return DescribeValue(out, series, index);
    out.BeginObject();
    out.Name(member);
    DescribeValue(out, series, index);
    out.StringMember("on-click", LinkText(link).c_str());
    out.EndObject();
}

}  // namespace

void OpenFlashGraph::DescribeSeries(DescriptionWriter& out, const OpenFlashGraphDataSeries& series,
                                    int base) const {
    out.BeginObject();
    DescribeHead(out, series, base);
    if (strcmp(series.GetType(), "pie") == 0) {
        DescribePie(out, series);
        out.EndObject();
        return;
    }
    const bool isLine = strcmp(series.GetType(), "line") == 0;
    if (isLine) {
        out.Name("dot-style");
        out.BeginObject();
        out.StringMember("type", "solid-dot");
        out.NumberMember("dot-size", base / 100);
        out.NumberMember("halo-size", base / 300);
        out.EndObject();
    }
    UString tip;
    tip.Format("%s: #val#", series.GetName());
    out.StringMember("tip", tip.c_str());
    out.Name("values");
    out.BeginArray();
    for (int i = 0; i < series.GetCount(); ++i)
        DescribePoint(out, series, i, isLine ? "value" : "top");
    out.EndArray();
    out.EndObject();
}

void OpenFlashGraph::DescribePie(DescriptionWriter& out,
                                 const OpenFlashGraphDataSeries& series) const {
    constexpr int kStartAngle = 35;
    const int count = series.GetCount();
    out.NumberMember("start-angle", kStartAngle);
    out.Name("animate");
    out.BeginArray();
    out.BeginObject();
    out.StringMember("type", "fade");
    out.EndObject();
    out.EndArray();
    out.StringMember("tip", "#label#<br>#val# of #total#");
    out.Name("colours");
    out.BeginArray();
    const int* order = kPieOrder[count < kPieColourCount ? count : 0];
    for (int i = 0; i < count; ++i)
        out.String(kPieColours[order[i % kPieColourCount]]);
    out.EndArray();
    out.Name("values");
    out.BeginArray();
    for (int i = 0; i < count; ++i) {
        out.BeginObject();
        out.StringMember("label", series.GetLabel(i));
        out.Name("value");
        DescribeValue(out, series, i);
        if (const char* link = series.GetLink(i); *link != '\0')
            out.StringMember("on-click", LinkText(link).c_str());
        out.EndObject();
    }
    out.EndArray();
}

// One element for all series: each of its values is the array of theirs.
void OpenFlashGraph::DescribeStack(DescriptionWriter& out, int base) const {
    out.BeginObject();
    DescribeHead(out, *series_[0], base);
    out.StringMember("tip", "#key#: #val# of #total#");
    out.Name("keys");
    out.BeginArray();
    for (const auto& series : series_) {
        out.BeginObject();
        out.StringMember("colour", series->GetColour());
        out.StringMember("text", series->GetName());
        out.NumberMember("font-size", base / 30);
        out.EndObject();
    }
    out.EndArray();
    out.Name("values");
    out.BeginArray();
    for (int i = 0; i < PointCount(); ++i) {
        out.BeginArray();
        for (const auto& series : series_) {
            if (i < series->GetCount())
                DescribePoint(out, *series, i, "top");
            else
                out.Raw("0");  // keeps the series behind it in its place
        }
        out.EndArray();
    }
    out.EndArray();
    out.EndObject();
}

void OpenFlashGraph::DescribeValueAxis(DescriptionWriter& out, int base) const {
    const double height = IsStacked() ? getStackedGraphHeight() : getGraphHeight();
    const double largest = std::clamp(height, std::max<double>(scale_, 1), kLargestMax);
    const double step = IsTime() ? TimeStep(largest) : DecimalStep(largest);
    const double max = std::min(step * std::ceil(largest / step), kLargestMax);
    out.Name("y_axis");
    out.BeginObject();
    out.NumberMember("steps", static_cast<long>(step));
    out.NumberMember("tick-length", base / 75);
    out.NumberMember("max", static_cast<long>(max));
    if (IsTime()) {
        out.Name("labels");
        out.BeginArray();
        for (long value = 0; value <= static_cast<long>(max); value += static_cast<long>(step)) {
            out.BeginObject();
            out.NumberMember("y", value);
            out.StringMember("text", TimeText(value).c_str());
            out.EndObject();
        }
        out.EndArray();
    }
    out.EndObject();
    UString style;
    style.Format("%d,#000000", base / 30);
    out.StringMember("y_label__label_style", style.c_str());
}

UString OpenFlashGraph::getRandomFName(const WebContext& ctx) {
    unsigned char bytes[16];
    if (getrandom(bytes, sizeof bytes, 0) != sizeof bytes) ThrowText("No random numbers.");
    std::string name = ctx.session_id.c_str();
    name += '_';
    for (const unsigned char byte : bytes) {
        char hex[3];
        snprintf(hex, sizeof hex, "%02x", byte);
        name += hex;
    }
    return UString((name + ".json").c_str());
}

void OpenFlashGraph::deleteOldData() {
    CleanupDir(kFolder, "", kChartSeconds);
}

void OpenFlashGraph::writeData(WebContext& ctx) {
    const UString path = UString(kFolder) + "/" + getRandomFName(ctx);
    const UString real = RootPath(path.c_str());
    try {
        EnsureFolder(kFolder);
        deleteOldData();
    } catch (const char* message) {
        ConsoleReport("%s\n", message);
    }
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const int fd = open(real.c_str(), kFlags, 0600);
    const bool written = fd >= 0 && WriteWhole(fd, Describe(ctx));
    if (fd >= 0) close(fd);
    if (!written) {
        if (fd >= 0) unlink(real.c_str());
        ConsoleReport("could not open %s\n", path.c_str());
    }
    pathname_ = written ? path.c_str() : "";
}

UString OpenFlashGraph::GetDataURL(WebContext& ctx) const {
    if (pathname_.IsEmpty()) return {};
    return ctx.GetURL("pagename=jsonchart&id=%s", pathname_.c_str() + sizeof kFolder);
}

const char* OpenFlashGraph::GetHeaders(WebContext&) {
    return "<script src=\"lib/chart.umd.min.js\" defer></script>\n"
           "<script src=\"js/chart.js\" defer></script>\n";
}

void OpenFlashGraph::Render(WebContext& ctx, WebRender* out) {
    writeData(ctx);
    out->printf("<div id=\"%s\" style=\"visibility:visible\"></div>", id_.c_str());
}
