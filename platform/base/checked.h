// Arithmetic on sizes and offsets that come from a file: every sum is checked.
#pragma once

#include "platform/base/error.h"

#include <cstdint>

namespace platform {

// The sum; throws Errc::too_large where 64 bits do not hold it.
inline std::uint64_t checked_add(std::uint64_t a, std::uint64_t b) {
    std::uint64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) {
        throw Error(Errc::too_large, "sum of two sizes");
    }
    return sum;
}

// Whether [offset, offset + count) lies inside [0, size).
inline bool fits(std::uint64_t offset, std::uint64_t count, std::uint64_t size) {
    return offset <= size && count <= size - offset;
}

} // namespace platform
