#include "portal/report/ReportSpool.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "common/Path.h"
#include "common/ThrowText.h"
#include "portal/background/MoveBytes.h"

namespace {

constexpr size_t kMostHeld = 1 << 20;
constexpr size_t kBlock = 16 << 10;
constexpr size_t kLargePiece = 16 << 10;

// A file that nobody else sees and that no crash leaves behind.
int OpenNameless() {
    const UString folder = RootPath(ReportSpool::kFolder);
    int fd = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (fd >= 0) return fd;
    // Not every file system has such files.
    UString path;
    path.Format("%s/spool_XXXXXX", folder.c_str());
    std::string name = path.c_str();
    fd = mkostemp(name.data(), O_CLOEXEC);
    if (fd >= 0) unlink(name.c_str());
    return fd;
}

[[noreturn]] void Fail() {
    ThrowText("The report could not be kept: %s", strerror(errno));
}

}  // namespace

ReportSpool::~ReportSpool() {
    if (fd_ >= 0) close(fd_);
}

std::string ReportSpool::OpenForWriting() {
    if (fd_ < 0) fd_ = OpenNameless();
    if (fd_ < 0) Fail();
    return "/proc/self/fd/" + std::to_string(fd_);
}

void ReportSpool::vprintf(const char* fmt, va_list args) {
    UString text;
    text.vFormat(fmt, args);
    Write(text.c_str());
}

void ReportSpool::Write(std::string_view text) {
    const size_t most = fd_ < 0 ? kMostHeld : kBlock;
    if (held_.size() + text.size() > most) {
        if (fd_ < 0) fd_ = OpenNameless();
        if (fd_ < 0) Fail();
        Append(held_);
        held_.clear();
        // Large pieces go straight on: another copy of them would only cost.
        if (text.size() >= kLargePiece) return Append(text);
    }
    held_ += text;
}

// Appends to the file.
void ReportSpool::Append(std::string_view text) {
    while (!text.empty()) {
        const ssize_t n = write(fd_, text.data(), text.size());
        if (n < 0 && errno != EINTR) Fail();
        if (n > 0) text.remove_prefix(static_cast<size_t>(n));
    }
}

void ReportSpool::SendTo(WebRender& out) {
    off_t at = 0;
    ssize_t moved = fd_ >= 0 ? 1 : 0;
    while (moved > 0 && !out.Closed())
        moved = MoveBytes(fd_, &at, out);
    if (moved < 0 && errno != EPIPE) Fail();
    out.Write(held_);
}
