// PdfText.h: text measured and broken into lines for one font and size.
#pragma once

#include <hpdf.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The text with everything that the writer cannot print (bytes that are no UTF-8, characters beyond
// U+FFFF) as U+FFFD, and control characters as blanks.
std::string PrintableText(std::string_view text);

// Texts are printable.
class PdfText {
  public:
    PdfText(HPDF_Font font, float size) : font_(font), size_(size) {}

    HPDF_Font font() const { return font_; }
    float size() const { return size_; }
    // In points.
    float Width(std::string_view text);
    // The lines that fit into the width, broken at blanks, and inside of a word only where the word
    // alone is too long. At least one line.
    std::vector<std::string> Lines(const std::string& text, float width);

  private:
    float CharacterWidth(std::string_view character);
    void BreakWord(std::string_view word, float width, std::vector<std::string>& lines);

    HPDF_Font font_;
    float size_;
    std::unordered_map<std::string, float> widths_;  // of the characters seen so far
};
