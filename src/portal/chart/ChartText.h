// ChartText.h: a text of a chart with its style, and how a style is read.
#pragma once

#include "common/UStringX.h"

class JsonObj;
class PngChart;

// The fonts that charts are drawn with, as paths below the run-time root; ChartFont.h tells what
// stands in for a file that is missing.
inline constexpr char kVeraPath[] = "/Norvane/Sites/common/fonts/Vera.ttf";
inline constexpr char kLuxiPath[] = "/Norvane/Sites/common/fonts/luxisr.ttf";

// Stores the value of one key of a style text such as "{font-size: 20px; color:#000000;}" and
// answers true; false, and an empty value, when the style has no such key. Blanks around keys and
// values do not count; a key is its whole name ("color" is not found in "background-color"). The
// last value may lack its semicolon.
bool GetStyle(const char* style, const char* key, UString& value);

class ChartText {
  public:
    // The styled text of a member of the description, an object with "text" and "style". Null, or
    // one without these two strings, keeps the defaults: size 18, bright green, Vera. The size is
    // in points (ChartFont.h): `size` when it is not 0, else 7 tenths of the style's "font-size".
    ChartText(PngChart* chart, JsonObj* member, int size);

    // In pixels; 0 for no text.
    int Width() const;
    // The font size.
    int Height() const { return fontsize; }
    // Draws the text from (x, y), the left end of its base line, turned by `angle` radians.
    void Plot(int x, int y, double angle);
    const char* String() const;  // "" when there is none

    PngChart* chart;
    JsonObj* text = nullptr;
    JsonObj* style = nullptr;
    int fontsize = 18;
    UString font;
    UString fontpath = kVeraPath;
    unsigned int rgb = 0x00FF00;

  private:
    void ReadStyle(bool readsSize);
};
