// LineBuf.h: cuts arriving bytes into lines.
#pragma once

#include <cstdint>

#include "common/UStringX.h"

// Collects arriving bytes and hands out complete lines.
class LineBuf {
  public:
    LineBuf() = default;
    ~LineBuf();
    LineBuf(const LineBuf&) = delete;
    LineBuf& operator=(const LineBuf&) = delete;

    // Throws a character string when there is no memory.
    void Add(const char* data, unsigned int len);
    // Takes the next complete line into `line` and drops the whole run of CR and LF behind it;
    // false, and nothing taken, when no line is complete yet.
    bool GetLine(UString& line);

  private:
    char* buffer = nullptr;
    uint32_t buflen = 0;     // bytes held, from start_ on
    uint32_t start_ = 0;     // lines before it were handed out
    uint32_t scanned_ = 0;   // held bytes known to have no line end
    uint32_t capacity_ = 0;  // of buffer
};
