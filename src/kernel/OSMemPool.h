// OSMemPool.h: where a class takes its memory from when the ordinary heap will not do.
#pragma once

#include <cstddef>

class OSMemPool {
  public:
    virtual ~OSMemPool() = default;

    // A block of at least `bytes` bytes, aligned for any type, or null when there is none.
    virtual void* Allocate(size_t bytes) = 0;
    // Takes back a block that Allocate of this pool gave; null is allowed.
    virtual void Free(void* block) = 0;
};
