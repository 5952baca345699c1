#pragma once

#include "core/linux/Files.h"
#include "core/platform.h"

#include <vector>

namespace sysinfo::platform {

/// Reads one process in full from its folder under proc. All files come through one descriptor of that
/// folder, so they speak of one process even when its pid is reused meanwhile.
class ProcessReader {
public:
    ProcessReader(const SystemRoot& root, uint64_t bootSeconds);

    enum class Outcome {
        read,
        denied, ///< the process exists but tells nothing more than its owner
        gone,
    };

    /// Brings `process` (whose pid is set) up to date; the texts are replaced only when they changed. CPU
    /// time is taken from the kernel's tick counts, which round to 10 ms; callers that know better overwrite
    /// it.
    Outcome read(KernelProcess& process);

private:
    std::optional<std::string_view> readFile(int folder, const char* name);
    Text readPath(int folder) const;

    std::string procPrefix_; ///< "/proc/"
    uint64_t bootSeconds_;
    std::vector<char> buffer_;
};

} // namespace sysinfo::platform
