#pragma once

#include "monitor/Snapshot.h"

namespace quarn::testing {

/// A process whose details could be read.
inline ProcInfo processOf(int64_t pid, std::string_view name = "", double cpu = 0) {
    ProcInfo info;
    info.pid = pid;
    info.name = name;
    info.accessible = true;
    info.cpuPercent = cpu;
    info.startTimeMicros = 1'000'000;
    return info;
}

} // namespace quarn::testing
