#pragma once

#include "core/CpuTopology.h"

#include <string_view>

namespace sysinfo::platform {

/// A list of CPU numbers as the kernel writes it ("0-3,5,8-9"), ascending and unique; what is no list gives
/// what could be read of it. Numbers beyond the kernel's own limit end it.
std::vector<uint32_t> parseCpuList(std::string_view text);

/// A cache size as the kernel writes it ("48K", "2M"); nullopt for any other text.
std::optional<uint64_t> parseCacheSize(std::string_view text);

} // namespace sysinfo::platform
