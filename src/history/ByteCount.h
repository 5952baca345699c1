#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace quarn {

/// Bytes as the database keeps them; what does not fit is the largest number.
inline int64_t byteCount(uint64_t bytes) {
    constexpr auto most = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    return static_cast<int64_t>(std::min(bytes, most));
}

/// Adds bytes to a total, which stays at the largest number rather than overflow.
inline void addBytes(int64_t& total, uint64_t bytes) {
    total = byteCount(static_cast<uint64_t>(total) + static_cast<uint64_t>(byteCount(bytes)));
}

/// What a cumulative counter grew by; 0 when it went backwards, after a reset or with a vanished device.
inline uint64_t counterGrowth(uint64_t before, uint64_t now) { return now > before ? now - before : 0; }

} // namespace quarn
