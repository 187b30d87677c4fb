#include "portal/chart/pngwriter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "common/ThrowText.h"
#include "portal/chart/ChartFont.h"
#include "portal/chart/PngFile.h"

namespace {

constexpr size_t kChannels = 3;

uint8_t UpperByte(int channel) {
    return static_cast<uint8_t>(std::clamp(channel, 0, 65535) >> 8);
}

}  // namespace

pngwriter::pngwriter() : pngwriter(1, 1, 1.0, "") {}

pngwriter::pngwriter(int width, int height, double background, const char* filename)
    : width_(width), height_(height), filename_(filename) {
    if (width < 1 || height < 1 || width > kMaxSide || height > kMaxSide)
        ThrowText("A picture of %d by %d pixels is not possible: 1 to %d each.", width, height,
                  kMaxSide);
    const double grey = std::clamp(background, 0.0, 1.0) * 255;
    pixels_.assign(static_cast<size_t>(width) * static_cast<size_t>(height) * kChannels,
                   static_cast<uint8_t>(std::lround(grey)));
}

uint8_t* pngwriter::At(int x, int y) {
    const size_t pixel =
        static_cast<size_t>(height_ - y) * static_cast<size_t>(width_) + static_cast<size_t>(x - 1);
    return pixels_.data() + pixel * kChannels;
}

void pngwriter::filledsquare(int xfrom, int yfrom, int xto, int yto, int red, int green, int blue) {
    const int left = std::max(std::min(xfrom, xto), 1);
    const int right = std::min(std::max(xfrom, xto), width_);
    const int bottom = std::max(std::min(yfrom, yto), 1);
    const int top = std::min(std::max(yfrom, yto), height_);
    const uint8_t channels[] = {UpperByte(red), UpperByte(green), UpperByte(blue)};
    for (int y = bottom; y <= top; ++y) {
        if (left > right) return;
        uint8_t* at = At(left, y);
        for (int x = left; x <= right; ++x)
            at = std::copy_n(channels, kChannels, at);
    }
}

void pngwriter::plot_blend(int x, int y, double opacity, int red, int green, int blue) {
    if (x < 1 || y < 1 || x > width_ || y > height_) return;
    const double part = std::clamp(opacity, 0.0, 1.0);
    uint8_t* at = At(x, y);
    for (const int channel : {red, green, blue}) {
        const double mixed = *at + (UpperByte(channel) - *at) * part;
        *at++ = static_cast<uint8_t>(std::lround(mixed));
    }
}

void pngwriter::line(int xfrom, int yfrom, int xto, int yto, int red, int green, int blue) {
    if (xfrom == xto || yfrom == yto)
        filledsquare(xfrom, yfrom, xto, yto, red, green, blue);
    else
        SlantedLine(xfrom, yfrom, xto, yto, red, green, blue);
}

// Walks along the longer side; each step shares its colour out between the two pixels that the line
// passes between.
void pngwriter::SlantedLine(int xfrom, int yfrom, int xto, int yto, int red, int green, int blue) {
    const double dx = static_cast<double>(xto) - xfrom, dy = static_cast<double>(yto) - yfrom;
    const bool steep = std::abs(dy) > std::abs(dx);
    const double slope = steep ? dx / dy : dy / dx;
    const int64_t start = steep ? yfrom : xfrom, end = steep ? yto : xto;
    const double across = steep ? xfrom : yfrom;
    const int64_t first = std::max<int64_t>(std::min(start, end), 1);
    const int64_t last = std::min<int64_t>(std::max(start, end), steep ? height_ : width_);
    for (int64_t step = first; step <= last; ++step) {
        const double exact = across + slope * static_cast<double>(step - start);
        if (exact < 0 || exact > (steep ? width_ : height_) + 1) continue;
        const int at = static_cast<int>(step), low = static_cast<int>(std::floor(exact));
        const double upper = exact - low;
        plot_blend(steep ? low : at, steep ? at : low, 1 - upper, red, green, blue);
        plot_blend(steep ? low + 1 : at, steep ? at : low + 1, upper, red, green, blue);
    }
}

void pngwriter::plot_text(const char* face_path, int fontsize, int x_start, int y_start,
                          double angle, const char* text, int red, int green, int blue) {
    ChartFont::Open(face_path).Draw(
        text, fontsize, x_start, y_start, angle,
        [&](int x, int y, double coverage) { plot_blend(x, y, coverage, red, green, blue); });
}

int pngwriter::get_text_width(const char* face_path, int fontsize, const char* text) {
    return ChartFont::Open(face_path).Width(text, fontsize);
}

void pngwriter::settext(const char* title, const char* author, const char* description,
                        const char* software) {
    title_ = title;
    author_ = author;
    description_ = description;
    software_ = software;
}

void pngwriter::close() {
    const PngTexts texts = {{{"Title", title_.c_str()},
                             {"Author", author_.c_str()},
                             {"Description", description_.c_str()},
                             {"Software", software_.c_str()}}};
    if (!WritePngFile(filename_.c_str(), width_, height_, pixels_.data(), gamma_, texts))
        ThrowText("The picture %s could not be written.", filename_.c_str());
}
