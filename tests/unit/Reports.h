// Reports.h: what is written to the console during a test case.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "kernel/OSConsole.h"

// Takes what is reported while it lives.
class Reports {
  public:
    Reports() : stream_(open_memstream(&text_, &size_)), console_(stream_), before_(Console) {
        Console = &console_;
    }
    ~Reports() {
        Console = before_;
        std::fclose(stream_);
        std::free(text_);
    }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    bool Has(std::string_view text) const { return All().find(text) != std::string_view::npos; }
    bool Empty() const { return All().empty(); }
    std::string_view All() const {
        std::fflush(stream_);
        return {text_, size_};
    }

  private:
    char* text_ = nullptr;
    size_t size_ = 0;
    FILE* stream_;
    OSConsole console_;
    OSConsole* before_;
};
