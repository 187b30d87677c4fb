// PngFile.h: writes pixels as a PNG file.
#pragma once

#include <array>
#include <cstdint>

struct PngText {
    const char* keyword;
    const char* text;  // UTF-8; an empty one is left out
};
using PngTexts = std::array<PngText, 4>;

// Writes rows from the top, three bytes a pixel, to the path (below the run-time root as any
// other), with the texts and the exponent of the gAMA chunk. False, and no file, when that fails.
[[nodiscard]] bool WritePngFile(const char* path, int width, int height, const uint8_t* pixels,
                                double gamma, const PngTexts& texts);
