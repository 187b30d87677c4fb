// WebRender.h: the sinks that pages render into.
#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>
#include <string_view>

#include "common/UStringX.h"

// Where a page's text goes. A failed write is not reported: the reader has gone.
class WebRender {
  public:
    virtual ~WebRender() = default;
    // Formats through vprintf. Text from outside is never the format.
    virtual void printf(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    virtual void vprintf(const char* fmt, va_list args) __attribute__((format(printf, 2, 0))) = 0;
    // Writes the bytes as they are.
    virtual void Write(std::string_view text) = 0;
    // Hands over what is buffered, so that the reader sees the page grow.
    virtual void Flush() {}
    // True once the reader is known to have gone: long work can end.
    virtual bool Closed() const { return false; }
};

// Writes to a stdio stream that the caller keeps open.
class FileWebRender : public WebRender {
  public:
    explicit FileWebRender(FILE* stream) : stream_(stream) {}
    void vprintf(const char* fmt, va_list args) override __attribute__((format(printf, 2, 0)));
    void Write(std::string_view text) override;
    void Flush() override;

  private:
    FILE* stream_;
};

// Writes to standard output in large blocks; what is left goes out with the destructor.
class StdoutWebRender : public WebRender {
  public:
    StdoutWebRender();
    ~StdoutWebRender() override;
    StdoutWebRender(const StdoutWebRender&) = delete;
    StdoutWebRender& operator=(const StdoutWebRender&) = delete;
    void vprintf(const char* fmt, va_list args) override __attribute__((format(printf, 2, 0)));
    void Write(std::string_view text) override;
    void Flush() override;
    bool Closed() const override { return closed_; }
    // Drops what was written, as long as none of it has gone out; else answers false.
    bool Discard();

  private:
    void Send(std::string_view text);

    std::string held_;
    bool sent_ = false;
    bool closed_ = false;
};

// Collects the page as text in `output`; `buffer` holds the latest formatted piece. Nobody else
// writes to `output` before the page is complete.
class UStringWebRender : public WebRender {
  public:
    UString buffer;
    UString output;
    void vprintf(const char* fmt, va_list args) override __attribute__((format(printf, 2, 0)));
    void Write(std::string_view text) override;

  private:
    size_t length_ = 0;  // of output, which would have to be measured anew for every piece
};
