#include "network/OSBuf.h"

#include <algorithm>
#include <cstring>

OSBuf::OSBuf(size_t capacity) : block_(new unsigned char[capacity]()), capacity_(capacity) {}

OSBuf::OSBuf(const void* bytes, size_t size) : OSBuf(size) {
    if (size > 0) std::memcpy(UseFront(size), bytes, size);
}

unsigned char* OSBuf::UseFront(size_t n) {
    start_ = 0;
    size_ = std::min(n, capacity_);
    return data();
}

unsigned char* OSBuf::UseBack(size_t n) {
    size_ = std::min(n, capacity_);
    start_ = capacity_ - size_;
    return data();
}

std::unique_ptr<OSBuf> OSStream::Take() {
    OSBuf* const oldest = First();
    if (oldest != nullptr) Unlink(oldest);
    return std::unique_ptr<OSBuf>(oldest);
}
