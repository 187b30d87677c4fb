#include "portal/background/MoveBytes.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "cgiFramework/WebRender.h"

namespace {

constexpr size_t kBlock = 256 << 10;

ssize_t CopyBytes(int from, off_t* at, WebRender& out) {
    const std::unique_ptr<char[]> block(new char[kBlock]);
    const ssize_t got =
        at != nullptr ? pread(from, block.get(), kBlock, *at) : read(from, block.get(), kBlock);
    if (got <= 0) return got;
    out.Write({block.get(), static_cast<size_t>(got)});
    if (at != nullptr) *at += got;
    return got;
}

}  // namespace

ssize_t MoveBytes(int from, off_t* at, WebRender& out) {
    ssize_t moved = -1;
    errno = EINVAL;
    if (dynamic_cast<StdoutWebRender*>(&out) != nullptr) {
        out.Flush();
        do
            moved = splice(from, at, STDOUT_FILENO, nullptr, kBlock, SPLICE_F_MOVE);
        while (moved < 0 && errno == EINTR);
    }
    if (moved < 0 && errno == EINVAL) do
            moved = CopyBytes(from, at, out);
        while (moved < 0 && errno == EINTR);
    return moved;
}
