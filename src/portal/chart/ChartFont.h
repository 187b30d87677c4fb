// ChartFont.h: a font file as charts use it: how wide a text is, and its letters as coverage of
// pixels.
#pragma once

#include <functional>
#include <memory>
#include <unordered_map>

#include "common/UStringX.h"

// Sizes are points at 100 pixels an inch, so that 8 is a letter box of 11 pixels, whose capitals
// are 8 pixels high. Texts are UTF-8; a byte that is none shows as the replacement character, a
// letter that the font lacks comes from DejaVu Sans. Only the first kMaxLetters letters of a text
// count.
class ChartFont {
  public:
    static constexpr size_t kMaxLetters = 1000;
    static constexpr int kMaxSize = 200;

    // The font of that path, or, when the file cannot be read, Debian's Vera or DejaVu Sans. It is
    // read once and lives as long as the process. Throws a text when there is no font at all.
    static ChartFont& Open(const char* path);

    ~ChartFont();
    ChartFont(const ChartFont&) = delete;
    ChartFont& operator=(const ChartFont&) = delete;

    // The advance of the text in pixels, rounded up. Grows linearly with the size.
    int Width(const char* text, int size);
    // The text, or as much of its beginning as leaves room for an ellipsis within `width` pixels.
    UString Shorten(const char* text, int size, int width);

    // Told for each pixel that a letter touches: how much of it is covered, above 0 and up to 1.
    using Paint = std::function<void(int x, int y, double coverage)>;
    // The text from (x, y), the left end of its base line, turned by `angle` radians against the
    // clock; y grows upwards.
    void Draw(const char* text, int size, int x, int y, double angle, const Paint& paint);

  private:
    struct Face;
    struct Letter {
        Face* face;  // null: nothing to draw
        unsigned glyph;
        double advance;  // for a letter box of 1 pixel
    };

    explicit ChartFont(std::unique_ptr<Face> face);
    Letter Look(wchar_t code);
    const Letter& Find(wchar_t code);
    void DrawLetter(const Letter& letter, int size, double x, double y, double angle,
                    const Paint& paint);

    std::unique_ptr<Face> face_;
    std::unordered_map<wchar_t, Letter> letters_;
};
