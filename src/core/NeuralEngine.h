#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sysinfo {

/// A processor for neural networks.
struct NeuralEngine {
    uint32_t cores = 0; ///< 0 when its driver does not tell
    std::string arch;   ///< "Intel NPU", "AMD XDNA", …
};

namespace platform {
/// The first one that has a driver; nullopt when there is none. Stateless; any thread.
std::optional<NeuralEngine> findNeuralEngine(const SystemRoot& root);
} // namespace platform

} // namespace sysinfo
