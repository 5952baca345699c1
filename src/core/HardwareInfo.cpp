#include "core/HardwareInfo.h"

#include "core/CpuTopology.h"
#include "core/FlatRecords.h"
#include "core/GpuDevice.h"
#include "core/Machine.h"
#include "core/platform.h"

namespace sysinfo {

namespace {

void takeGpu(const std::vector<GpuDevice>& gpus, HardwareInfo& info) {
    for (const GpuDevice& gpu : gpus) {
        if (info.gpuName.empty()) info.gpuName = gpu.name;
        if (info.gpuCores == 0) info.gpuCores = gpu.cores;
        if (!info.gpuName.empty()) break;
    }
}

} // namespace

HardwareInfo readHardwareInfo(const SystemRoot& root) {
    MachineIdentity machine = platform::identifyMachine(root);
    const CpuLayout cpu = deriveCpuLayout(platform::readLogicalCpus(root));
    platform::MemoryCounters memory;
    platform::readMemoryCounters(*platform::openReaders(root), memory);

    HardwareInfo info;
    info.model = std::move(machine.model);
    info.cpuBrand = std::move(machine.cpuBrand);
    info.arch = std::move(machine.arch);
    info.osVersion = std::move(machine.osVersion);
    info.osBuild = std::move(machine.osBuild);
    info.kernel = std::move(machine.kernel);
    info.hostname = std::move(machine.hostname);
    takeGpu(platform::listGpus(root), info);
    info.ncpu = cpu.logical;
    info.physCpu = cpu.physical;
    info.perfCores = cpu.performance;
    info.effCores = cpu.efficiency;
    info.memTotal = memory.total;
    info.pageSize = memory.pageSize;
    info.bootTime = platform::bootTime(root).value_or(0);
    info.l1iCache = cpu.l1iCache;
    info.l1dCache = cpu.l1dCache;
    info.l2Cache = cpu.l2Cache;
    info.l2CacheE = cpu.l2CacheE;
    info.l3Cache = cpu.l3Cache;
    info.hvSupport = machine.hardwareVirtualisation;
    info.vmPresent = machine.virtualMachine;
    info.baseClockHz = cpu.baseClockHz ? cpu.baseClockHz : machine.nominalClockHz;
    info.isAppleSilicon = machine.appleSilicon;
    return info;
}

SCHardware flatHardware(const HardwareInfo& info) {
    using scutil::copyText;
    SCHardware flat{};
    copyText(flat.model, info.model);
    copyText(flat.cpuBrand, info.cpuBrand);
    copyText(flat.arch, info.arch);
    copyText(flat.osVersion, info.osVersion);
    copyText(flat.osBuild, info.osBuild);
    copyText(flat.kernel, info.kernel);
    copyText(flat.hostname, info.hostname);
    copyText(flat.gpuName, info.gpuName);
    flat.ncpu = info.ncpu;
    flat.physCpu = info.physCpu;
    flat.perfCores = info.perfCores;
    flat.effCores = info.effCores;
    flat.gpuCores = info.gpuCores;
    flat.memTotal = info.memTotal;
    flat.l2Cache = info.l2Cache;
    flat.pageSize = info.pageSize;
    flat.bootTime = info.bootTime;
    flat.l1iCache = info.l1iCache;
    flat.l1dCache = info.l1dCache;
    flat.l2CacheE = info.l2CacheE;
    flat.hvSupport = info.hvSupport;
    flat.vmPresent = info.vmPresent;
    return flat;
}

} // namespace sysinfo
