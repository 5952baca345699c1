#pragma once

#include "core/platform.h"

namespace sysinfo::platform {

/// Parses the per-CPU lines of proc/stat. Kernel 2.4 to today give 4 to 10 columns; missing ones count 0.
/// Guest time is part of user time already. False when there is no per-CPU line.
bool parseCpuTicks(std::string_view text, CpuTicks& out);

/// The number after `key` ("btime", "processes") in proc/stat; nullopt when the line is missing.
std::optional<uint64_t> parseStatNumber(std::string_view text, std::string_view key);

} // namespace sysinfo::platform
