#include "cgiFramework/WebRender.h"

#include <unistd.h>

#include <cerrno>

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
    buffer.vFormat(fmt, args);
    output += buffer;
}

void UStringWebRender::Write(std::string_view text) {
    output.Append(text.data(), text.size());
}
