// pngwriter.h: a picture that is drawn in memory and written as a PNG file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Pixels are counted from 1, (1, 1) is the lower left one, as is the point where a text begins.
// Colours are channels of 16 bits, 0 to 65535, of which the file keeps the upper 8. What lies
// outside the picture is not drawn. The names are those of the drawing library that this class
// stands in for: no more of it is here than charts use.
class pngwriter {
  public:
    static constexpr int kMaxSide = 4000;

    // One white pixel.
    pngwriter();
    // A picture all in one grey, 0.0 black to 1.0 white. Throws a text when a side is below 1 or
    // above kMaxSide. Nothing is written before close().
    pngwriter(int width, int height, double background, const char* filename);

    int getwidth() const { return width_; }
    int getheight() const { return height_; }

    // The exponent that the file's gAMA chunk names.
    void setgamma(double gamma) { gamma_ = gamma; }
    // A filled rectangle between two corners, both inside it.
    void filledsquare(int xfrom, int yfrom, int xto, int yto, int red, int green, int blue);
    // A line of one pixel's width between two points, both on it; a slanted one has smooth edges.
    void line(int xfrom, int yfrom, int xto, int yto, int red, int green, int blue);
    // Mixes a pixel with a colour: 0.0 leaves it, 1.0 replaces it.
    void plot_blend(int x, int y, double opacity, int red, int green, int blue);
    // A text, turned by `angle` radians against the clock; ChartFont.h tells what sizes and texts
    // mean. Throws when there is no font.
    void plot_text(const char* face_path, int fontsize, int x_start, int y_start, double angle,
                   const char* text, int red, int green, int blue);
    int get_text_width(const char* face_path, int fontsize, const char* text);

    // What the file says of itself, in UTF-8; an empty text is left out.
    void settext(const char* title, const char* author, const char* description,
                 const char* software);
    // Writes the file. Throws a text, and leaves no file, when that fails.
    void close();

  private:
    uint8_t* At(int x, int y);
    void SlantedLine(int xfrom, int yfrom, int xto, int yto, int red, int green, int blue);

    int width_, height_;
    double gamma_ = 0.5;
    std::string filename_;
    std::vector<uint8_t> pixels_;  // rows from the top, red, green and blue a pixel
    std::string title_, author_, description_, software_;
};
