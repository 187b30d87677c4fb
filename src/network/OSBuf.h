// OSBuf.h: kernel buffers, the blocks of bytes that travel through the I/O objects, and their
// queue.
#pragma once

#include <cstddef>
#include <memory>

#include "kernel/OSList.h"

// The sizes in bytes of the kernel's buffer classes, in rising order.
struct KernelCfg {
    size_t buf_size[4];
};
inline constexpr KernelCfg kKernelCfg = {{256, 1024, 4096, 16384}};

// A block of bytes with a part in use. An operation that takes an `OSBuf*` takes ownership of it.
class OSBuf : public OSListObj {
  public:
    // Room for `capacity` bytes, none of them in use.
    explicit OSBuf(size_t capacity);
    // Holds a copy of `size` bytes, all in use.
    OSBuf(const void* bytes, size_t size);
    OSBuf(const OSBuf&) = delete;
    OSBuf& operator=(const OSBuf&) = delete;

    // The bytes in use; they stay where they are until the buffer is released.
    unsigned char* data() { return block_.get() + start_; }
    const unsigned char* data() const { return block_.get() + start_; }
    size_t size() const { return size_; }
    size_t capacity() const { return capacity_; }

    // Puts the first, or the last, `n` bytes of the room in use and answers where they begin; what
    // they held before stays. `n` beyond the capacity counts as the capacity.
    unsigned char* UseFront(size_t n);
    unsigned char* UseBack(size_t n);

  private:
    std::unique_ptr<unsigned char[]> block_;
    size_t capacity_;
    size_t start_ = 0;
    size_t size_ = 0;
};

// A queue of buffers, which it owns.
class OSStream : public OSList<OSBuf> {
  public:
    // Takes the oldest buffer out; null when the queue is empty.
    std::unique_ptr<OSBuf> Take();
};
