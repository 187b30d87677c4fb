#include "portal/chart/PngFile.h"

#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "common/Path.h"
#include "kernel/OSConsole.h"

namespace {

// Charts are large even surfaces: little effort finds nearly all that there is to save.
constexpr int kCompression = 3;

void Complain(png_structp png, const char* message) {
    ConsoleReport("WritePngFile: %s\n", message);
    png_longjmp(png, 1);
}

void Ignore(png_structp /*png*/, const char* /*message*/) {}

bool IsAscii(const char* text) {
    return std::all_of(text, text + strlen(text), [](char c) { return (c & 0x80) == 0; });
}

void AddTexts(png_structp png, png_infop info, const PngTexts& texts) {
    png_text entries[std::tuple_size_v<PngTexts>] = {};
    int count = 0;
    for (const PngText& text : texts) {
        if (*text.text == '\0') continue;
        png_text& entry = entries[count++];
        entry.compression =
            IsAscii(text.text) ? PNG_TEXT_COMPRESSION_NONE : PNG_ITXT_COMPRESSION_NONE;
        // The library takes both without const and only reads them.
        entry.key = const_cast<char*>(text.keyword);
        entry.text = const_cast<char*>(text.text);
    }
    png_set_text(png, info, entries, count);
}

// The library leaves an error by a jump: no object with a destructor may live here.
bool Write(png_structp png, png_infop info, FILE* file, int width, int height,
           const uint8_t* pixels, double gamma, const PngTexts& texts) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_gAMA(png, info, gamma);
    png_set_compression_level(png, kCompression);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    AddTexts(png, info, texts);
    png_write_info(png, info);
    for (int row = 0; row < height; ++row)
        png_write_row(png, pixels + static_cast<size_t>(row) * static_cast<size_t>(width) * 3);
    png_write_end(png, nullptr);
    return true;
}

}  // namespace

bool WritePngFile(const char* path, int width, int height, const uint8_t* pixels, double gamma,
                  const PngTexts& texts) {
    const UString place = RootPath(path);
    FILE* file = fopen(place.c_str(), "wbe");
    if (file == nullptr) return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Complain, Ignore);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    bool written = info != nullptr && Write(png, info, file, width, height, pixels, gamma, texts);
    png_destroy_write_struct(&png, &info);
    // A device that was named instead of a file stays.
    struct stat what {};
    const bool isFile = fstat(fileno(file), &what) == 0 && S_ISREG(what.st_mode);
    written = fclose(file) == 0 && written;
    if (!written && isFile) unlink(place.c_str());
    return written;
}
