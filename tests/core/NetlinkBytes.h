#pragma once

#include <cstring>
#include <linux/netlink.h>
#include <string>
#include <string_view>

namespace quarn::testing {

/// Builds netlink messages as bytes.
template <class Structure>
std::string bytesOf(const Structure& structure) {
    return {reinterpret_cast<const char*>(&structure), sizeof structure};
}

inline std::string padded(std::string bytes) {
    bytes.resize((bytes.size() + 3) & ~size_t{3});
    return bytes;
}

inline std::string attribute(uint16_t type, std::string_view value) {
    const nlattr header{static_cast<uint16_t>(sizeof(nlattr) + value.size()), type};
    return padded(bytesOf(header) + std::string(value));
}

inline std::string message(uint16_t type, uint16_t flags, uint32_t sequence, const std::string& payload) {
    const nlmsghdr header{static_cast<uint32_t>(sizeof(nlmsghdr) + payload.size()), type, flags, sequence, 0};
    return padded(bytesOf(header) + payload);
}

} // namespace quarn::testing
