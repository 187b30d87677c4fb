#include "common/LineBuf.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

bool IsLineEnd(char c) {
    return c == '\r' || c == '\n';
}

}  // namespace

LineBuf::~LineBuf() {
    std::free(buffer);
}

void LineBuf::Add(const char* data, unsigned int len) {
    if (len == 0) return;
    const uint64_t needed = uint64_t{buflen} + len;
    if (needed > UINT32_MAX) throw "LineBuf - memory allocation failure";
    // What was handed out makes room first, once it outweighs what is held: each byte then moves
    // only a few times, however many lines arrive at once.
    if (start_ > 0 && (start_ >= buflen || uint64_t{start_} + needed > UINT32_MAX)) {
        std::memmove(buffer, buffer + start_, buflen);
        start_ = 0;
    }
    const uint64_t end = start_ + needed;
    if (end > capacity_) {
        const uint64_t grown =
            std::min<uint64_t>(std::max<uint64_t>(end, 2 * uint64_t{capacity_}), UINT32_MAX);
        void* bigger = std::realloc(buffer, grown);
        if (bigger == nullptr) throw "LineBuf - memory allocation failure";
        buffer = static_cast<char*>(bigger);
        capacity_ = static_cast<uint32_t>(grown);
    }
    std::memcpy(buffer + start_ + buflen, data, len);
    buflen += len;
}

bool LineBuf::GetLine(UString& line) {
    const char* begin = buffer + start_;
    const char* end = begin + buflen;
    const char* at = std::find_if(begin + scanned_, end, IsLineEnd);
    if (at == end) {
        scanned_ = buflen;
        return false;
    }
    line = "";
    line.Append(begin, static_cast<size_t>(at - begin));
    at = std::find_if_not(at, end, IsLineEnd);
    start_ += static_cast<uint32_t>(at - begin);
    buflen = static_cast<uint32_t>(end - at);
    scanned_ = 0;
    if (buflen == 0) start_ = 0;
    return true;
}
