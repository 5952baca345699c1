#pragma once

#include "core/SystemRoot.h"
#include "core/sc.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sysinfo {

/// The static description of a machine and its system; texts empty and numbers 0 when unknown.
struct HardwareInfo {
    std::string model;
    std::string cpuBrand;
    std::string arch;
    std::string osVersion;
    std::string osBuild;
    std::string kernel;
    std::string hostname;
    std::string gpuName; ///< of the first GPU
    uint32_t ncpu = 0;   ///< logical CPUs that are online
    uint32_t physCpu = 0;
    uint32_t perfCores = 0; ///< 0, as the next, on a processor with one kind of core
    uint32_t effCores = 0;
    uint32_t gpuCores = 0; ///< as the maker counts them: compute units, shader cores, …
    uint64_t memTotal = 0; ///< bytes
    uint64_t l2Cache = 0;  ///< bytes of the cache that one performance core uses, as the next
    uint64_t pageSize = 0;
    uint64_t bootTime = 0; ///< seconds since the epoch
    uint64_t l1iCache = 0;
    uint64_t l1dCache = 0;
    uint64_t l2CacheE = 0;  ///< of an efficiency core
    bool hvSupport = false; ///< the processor can run virtual machines
    bool vmPresent = false; ///< this is a virtual machine

    // Beyond the flat record.
    uint64_t l3Cache = 0; ///< over the whole machine
    uint64_t baseClockHz = 0;
    bool isAppleSilicon = false;
};

/// Reads it all. Stateless; any thread; a few milliseconds on a large machine.
HardwareInfo readHardwareInfo(const SystemRoot& root);

SCHardware flatHardware(const HardwareInfo& info);

} // namespace sysinfo
