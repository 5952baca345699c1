#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sysinfo::platform {

/// What proc/cpuinfo tells, whose lines differ from one architecture to the next.
struct CpuInfo {
    struct Processor {
        uint32_t id = 0;
        std::string package; ///< empty, as the next, where it is not told
        std::string core;
    };
    struct ArmPart {
        uint32_t implementer = 0;
        uint32_t part = 0;
        bool operator==(const ArmPart&) const = default;
    };

    std::vector<Processor> processors;
    std::string name;              ///< of the processor, blanks reduced to one
    std::string hardware;          ///< of the board, on older Arm systems
    std::string flags;             ///< of the first processor, words between blanks
    std::string arch;              ///< as the words of this file betray it; empty when they do not
    std::vector<ArmPart> armParts; ///< each kind once, in order of appearance
};

CpuInfo parseCpuInfo(std::string_view text);

/// Whether `flags` holds `word`.
bool hasFlag(std::string_view flags, std::string_view word);

/// What to call the processor: its own name, on Arm the names of its kinds of cores, strongest first
/// ("Cortex-X3, Cortex-A510"). Empty when unknown.
std::string processorName(const CpuInfo& info);

/// The clock that a name states ("… @ 3.00GHz"), 0 when it states none.
uint64_t clockOfName(std::string_view name);

} // namespace sysinfo::platform
