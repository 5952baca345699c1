#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <string>

namespace sysinfo {

/// What a machine and its system call themselves; texts empty and numbers 0 when unknown.
struct MachineIdentity {
    std::string model;     ///< "HP EliteBook 840 …", "MacBookAir7,2", "Raspberry Pi 4 Model B Rev 1.4"
    std::string cpuBrand;  ///< "13th Gen Intel(R) Core(TM) i7-1370P", "Cortex-A710, Cortex-A510"
    std::string arch;      ///< "x86_64", "aarch64", …
    std::string osVersion; ///< "Debian GNU/Linux 12 (bookworm)"
    std::string osBuild;
    std::string kernel; ///< "Linux 6.1.0-13-amd64"
    std::string hostname;
    uint64_t nominalClockHz = 0;         ///< as the processor's name states it
    bool hardwareVirtualisation = false; ///< can run virtual machines
    bool virtualMachine = false;         ///< is one
    bool appleSilicon = false;
};

namespace platform {
/// Reads names once; stateless, any thread.
MachineIdentity identifyMachine(const SystemRoot& root);
} // namespace platform

} // namespace sysinfo
