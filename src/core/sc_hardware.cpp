#include "core/Battery.h"
#include "core/GpuStats.h"
#include "core/HardwareInfo.h"
#include "core/sc.h"

#include <mutex>

using sysinfo::SystemRoot;

SCBattery sc_read_battery() { return sysinfo::flatBattery(sysinfo::readBattery(SystemRoot::host())); }

SCHardware sc_read_hardware() { return sysinfo::flatHardware(sysinfo::readHardwareInfo(SystemRoot::host())); }

SCGpuStats sc_gpu_stats() {
    // Some GPUs tell their load against the call before, which is therefore kept for all callers.
    static std::mutex mutex;
    static sysinfo::GpuSampler sampler(SystemRoot::host());
    const std::lock_guard lock(mutex);
    return sysinfo::combineGpus(sampler.sample());
}
