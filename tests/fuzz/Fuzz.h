// What the fuzz targets share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

inline std::string_view textOf(const uint8_t* data, size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

inline void require(bool holds) {
    if (!holds) std::abort();
}
