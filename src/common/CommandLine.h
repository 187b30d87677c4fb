// CommandLine.h: cuts a line of words apart, as column files, cost centre lists and rights use
// them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The words of a text. Words are parted by one or more separators; a part in double quotes belongs
// to one word, separators and all, and "" alone is an empty word. There is no escape character; a
// quote that is never closed runs to the end.
//
//   CommandLine words("name \"Total cost\" \"\"");   // name | Total cost | (empty)
class CommandLine {
  public:
    static constexpr size_t kMaxBytes = 8192;  // of the text; what lies beyond is cut off
    static constexpr size_t kMaxWords = 1000;  // further words are dropped

    // Copies the text; null reads as "".
    explicit CommandLine(const char* text, const char* separators = " \t");

    int argc() const { return static_cast<int>(starts_.size()); }
    // Word `i`, which lives as long as this object; "" when there is none.
    const char* operator[](int i) const;

  private:
    std::string words_;           // each ended by a NUL
    std::vector<size_t> starts_;  // where in words_ each begins
};
