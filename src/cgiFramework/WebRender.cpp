#include "cgiFramework/WebRender.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

constexpr size_t kBlock = 64 << 10;

}  // namespace

void WebRender::printf(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    vprintf(fmt, args);
    va_end(args);
}

void FileWebRender::vprintf(const char* fmt, va_list args) {
    vfprintf(stream_, fmt, args);
}

void FileWebRender::Write(std::string_view text) {
    fwrite(text.data(), 1, text.size(), stream_);
}

void FileWebRender::Flush() {
    fflush(stream_);
}

StdoutWebRender::StdoutWebRender() {
    held_.reserve(kBlock);
}

StdoutWebRender::~StdoutWebRender() {
    StdoutWebRender::Flush();
}

void StdoutWebRender::vprintf(const char* fmt, va_list args) {
    UString text;
    text.vFormat(fmt, args);
    Write(text.c_str());
}

void StdoutWebRender::Write(std::string_view text) {
    if (held_.size() + text.size() > kBlock) Flush();
    if (text.size() > kBlock)
        Send(text);
    else
        held_ += text;
}

void StdoutWebRender::Flush() {
    Send(held_);
    held_.clear();
}

bool StdoutWebRender::Discard() {
    if (sent_) return false;
    held_.clear();
    return true;
}

void StdoutWebRender::Send(std::string_view text) {
    while (!text.empty() && !closed_) {
        const ssize_t n = write(STDOUT_FILENO, text.data(), text.size());
        if (n < 0 && errno == EINTR) continue;
        sent_ = true;
        closed_ = n < 0;
        if (!closed_) text.remove_prefix(static_cast<size_t>(n));
    }
}

void UStringWebRender::vprintf(const char* fmt, va_list args) {
    const int length = buffer.vFormat(fmt, args);
    if (length > 0) Write({buffer.c_str(), static_cast<size_t>(length)});
}

void UStringWebRender::Write(std::string_view text) {
    const size_t needed = length_ + text.size();
    // Doubling: a string's own growth is exact beyond 8 KiB and would copy a long page every time.
    if (needed + 1 > static_cast<size_t>(output.buffer_size) || output.buffer == nullptr)
        output.Allocate(static_cast<int>(2 * needed));
    memcpy(output.buffer + length_, text.data(), text.size());
    length_ = needed;
    output.buffer[length_] = '\0';
    output.Dirty();
}
