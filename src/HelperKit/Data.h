#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace quarn {

/// Bytes as they travel between programs.
using Data = std::vector<uint8_t>;
using DataView = std::span<const uint8_t>;

} // namespace quarn
