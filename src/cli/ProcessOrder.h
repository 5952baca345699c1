#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <array>
#include <string_view>
#include <vector>

namespace quarn::cli {

/// What a list of processes is sorted by: the largest first, pid and name ascending. What is not known comes
/// last, equal ones stand by pid.
enum class ProcessOrder { cpu, memory, disk, pid, name };

inline constexpr std::array<std::string_view, 5> processOrderNames{"cpu", "memory", "disk", "pid", "name"};

/// The first `limit` processes in that order. They point into `processes`.
std::vector<const ProcInfo*> ordered(const SharedList<ProcInfo>& processes, ProcessOrder order, size_t limit,
                                     const Known& known);

/// Bytes read and written per second, unknown where they could not be read.
std::optional<double> diskRate(const ProcInfo& process, const Known& known);

} // namespace quarn::cli
