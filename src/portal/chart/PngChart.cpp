#include "portal/chart/PngChart.h"

#include <sys/random.h>

#include <cstring>
#include <string_view>

#include "common/Html.h"
#include "common/ThrowText.h"
#include "common/Version.h"

namespace {

constexpr double kGamma = 0.45;
constexpr unsigned kGrey = 0xF8F8F8;
constexpr int kTitleMargin = 8;
constexpr int kTitleBand = 12;  // beyond the font's size

JsonObj* Member(JsonObj* parent, const char* name, JsonObj::Type type) {
    JsonObj* found = parent->Find(name);
    return found != nullptr && found->type == type ? found : nullptr;
}

// A link leads to a page or over HTTP; anything with another scheme, such as a script, is none.
bool IsHarmless(std::string_view url) {
    for (const char c : url)
        if (static_cast<unsigned char>(c) < ' ') return false;
    const size_t colon = url.find(':');
    if (colon == std::string_view::npos || colon > url.find_first_of("/?#")) return true;
    return url.starts_with("http://") || url.starts_with("https://");
}

// The channels of a colour, 16 bits each, of which the lower 8 are 0.
int Red(unsigned rgb) {
    return static_cast<int>((rgb >> 8) & 0xFF00);
}
int Green(unsigned rgb) {
    return static_cast<int>(rgb & 0xFF00);
}
int Blue(unsigned rgb) {
    return static_cast<int>((rgb << 8) & 0xFF00);
}

}  // namespace

PngChart::PngChart(JsonObj* json_, int width_, int height_, const char* file, const char* server_)
    : json(json_), width(width_), height(height_), server(server_) {
    NameMap(file);
    FindMembers();
    if (IsType("bar") || IsType("line")) {
        ReadSeries();
        BarChartGetHeights();
        BuildAxis();
        Create(file);
        PlotBarChart();
    } else if (IsType("pie")) {
        BuildTitle();
        Create(file);
        PlotPieChart();
    } else {
        ThrowText("chart type not known");
    }
    png.close();
    img_map.Format("<map name=\"%s\">\r\n%s</map>\r\n", img_map_id.c_str(), areas_.c_str());
}

PngChart::~PngChart() = default;

bool PngChart::IsType(const char* prefix) const {
    return strncmp(chart_type->String(), prefix, strlen(prefix)) == 0;
}

void PngChart::FindMembers() {
    elements = Member(json, "elements", JsonObj::kArray);
    if (elements == nullptr) ThrowText("elements array not found");
    e0 = elements->values.First();
    if (e0 == nullptr || e0->type != JsonObj::kObject) ThrowText("element[0] not found");
    chart_type = Member(e0, "type", JsonObj::kString);
    if (chart_type == nullptr) ThrowText("chart type not found");
    CheckChartSize(*elements);

    title = Member(json, "title", JsonObj::kObject);
    xlegend = Member(json, "x_legend", JsonObj::kObject);
    ylegend = Member(json, "y_legend", JsonObj::kObject);
    xaxis = Member(json, "x_axis", JsonObj::kObject);
    yaxis = Member(json, "y_axis", JsonObj::kObject);
    ystyle = Member(json, "y_label__label_style", JsonObj::kString);
    // A text of the first element says that each element is an entry of the key.
    keys = Member(e0, "keys", JsonObj::kArray);
    if (keys == nullptr && Member(e0, "text", JsonObj::kString) != nullptr) keys = elements;

    colours_ = ReadChartColours(*e0);
    keyEntries_ = ReadChartKeys(keys);
    rgb = colours_.data();
    num_colours = static_cast<int>(colours_.size());
    if (xlegend != nullptr) xlegend_text = std::make_unique<ChartText>(this, xlegend, 0);
    if (ylegend != nullptr) ylegend_text = std::make_unique<ChartText>(this, ylegend, 0);
}

void PngChart::NameMap(const char* file) {
    const char* slash = strrchr(file, '/');
    const char* base = slash != nullptr ? slash + 1 : file;
    const size_t length = strcspn(base, ".");
    if (length > 0) {
        UString name;
        name.Append(base, length);
        img_map_id.Format("map_%s", HtmlAttr(name.c_str()).c_str());
        return;
    }
    unsigned number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) ThrowText("no random number");
    img_map_id.Format("map_%d", static_cast<int>(number >> 1));
}

// The title at its own size or, when that is too wide for the picture, as large as it can be.
void PngChart::BuildTitle() {
    if (title == nullptr) return;
    title_text = std::make_unique<ChartText>(this, title, 0);
    for (int size = title_text->fontsize; title_text->Width() * 10 >= width * 9;) {
        if (--size == 0) {
            title_text = nullptr;
            return;
        }
        title_text = std::make_unique<ChartText>(this, title, size);
    }
    height_title = title_text->Height() + kTitleBand;
}

// The empty picture with its title.
void PngChart::Create(const char* file) {
    png = pngwriter(width, height, 1.0, file);
    png.setgamma(kGamma);
    Fill(1, 1, width, height, kGrey);
    UString software;
    software.Format("Lumora %s", kLumoraVersion);
    png.settext(title_text != nullptr ? title_text->String() : "", "Norvane Ltd.", "Report Chart",
                software.c_str());
    if (title_text != nullptr)
        title_text->Plot((width - title_text->Width()) / 2,
                         height - title_text->Height() - kTitleMargin, 0);
}

void PngChart::GetMap(UString& name, UString& map) const {
    name = img_map_id;
    map = img_map;
}

// The address that a click on the value leads to, escaped for an attribute; "" when there is none.
UString PngChart::GetLink(const ChartValue& value) const {
    constexpr std::string_view kPrefix = "navigateTo('";
    const std::string_view click = value.onClick;
    const size_t quote = click.rfind('\'');
    if (!click.starts_with(kPrefix) || quote == std::string_view::npos || quote < kPrefix.size() ||
        quote + 1 >= click.size() || click[quote + 1] != ')')
        return {};
    const std::string url(click.substr(kPrefix.size(), quote - kPrefix.size()));
    if (url.empty() || !IsHarmless(url)) return {};
    return HtmlAttr((server + url.c_str()).c_str());
}

void PngChart::Write(const char* font, int size, int x, int y, double angle, const char* words,
                     unsigned colour) {
    png.plot_text(font, size, x, y, angle, words, Red(colour), Green(colour), Blue(colour));
}

void PngChart::Fill(int left, int bottom, int right, int top, unsigned colour) {
    png.filledsquare(left, bottom, right, top, Red(colour), Green(colour), Blue(colour));
}

void PngChart::Line(int fromX, int fromY, int toX, int toY, unsigned colour) {
    png.line(fromX, fromY, toX, toY, Red(colour), Green(colour), Blue(colour));
}

void PngChart::Blend(int x, int y, double opacity, unsigned colour) {
    png.plot_blend(x, y, opacity, Red(colour), Green(colour), Blue(colour));
}
