// ReadPicture.h: reads a PNG file for a test, with libpng's own reader.
#pragma once

#include <png.h>

#include <cstring>
#include <string>
#include <vector>

struct Picture {
    int width = 0, height = 0;
    std::vector<unsigned char> pixels;  // rows from the top, red, green and blue

    // 0xRRGGBB of a pixel counted from 1 and from the lower left corner.
    unsigned At(int x, int y) const {
        const size_t at = 3 * (static_cast<size_t>(height - y) * width + x - 1);
        return static_cast<unsigned>(pixels[at] << 16 | pixels[at + 1] << 8 | pixels[at + 2]);
    }
};

// An empty picture when the file is none.
inline Picture ReadPicture(const std::string& path) {
    Picture picture;
    png_image image;
    memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return picture;
    image.format = PNG_FORMAT_RGB;
    picture.pixels.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) == 0)
        return Picture();
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    return picture;
}
