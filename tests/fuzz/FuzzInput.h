// FuzzInput.h: what the fuzz targets share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// The input as a text: up to its first zero byte.
inline std::string TextOf(const uint8_t* data, size_t size) {
    const std::string whole(reinterpret_cast<const char*>(data), size);
    return whole.c_str();
}

// Ends the run, which keeps the input, when a promise does not hold.
inline void Require(bool holds, const char* promise) {
    if (holds) return;
    fprintf(stderr, "broken promise: %s\n", promise);
    abort();
}
