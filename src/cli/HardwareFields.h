#pragma once

#include "cli/Fields.h"
#include "core/GpuStats.h"

namespace quarn::cli {

template <>
struct Fields<Hardware> {
    template <class Visit>
    static void each(const Hardware& hardware, const Known&, Visit&& visit) {
        visit("model", unlessEmpty(hardware.model));
        visit("cpuBrand", unlessEmpty(hardware.cpuBrand));
        visit("arch", unlessEmpty(hardware.arch));
        visit("osVersion", unlessEmpty(hardware.osVersion));
        visit("osBuild", unlessEmpty(hardware.osBuild));
        visit("kernel", unlessEmpty(hardware.kernel));
        visit("hostname", unlessEmpty(hardware.hostname));
        visit("gpuName", unlessEmpty(hardware.gpuName));
        visit("ncpu", ifPositive(hardware.ncpu));
        visit("physCpu", ifPositive(hardware.physCpu));
        visit("perfCores", ifPositive(hardware.perfCores));
        visit("effCores", ifPositive(hardware.effCores));
        visit("gpuCores", ifPositive(hardware.gpuCores));
        visit("memTotal", ifPositive(hardware.memTotal));
        visit("l2Cache", ifPositive(hardware.l2Cache));
        visit("l2CacheE", ifPositive(hardware.l2CacheE));
        visit("l1iCache", ifPositive(hardware.l1iCache));
        visit("l1dCache", ifPositive(hardware.l1dCache));
        visit("pageSize", ifPositive(hardware.pageSize));
        visit("hvSupport", hardware.hvSupport);
        visit("vmPresent", hardware.vmPresent);
        visit("bootTime", hardware.bootTime);
        visit("aneCores", ifPositive(hardware.aneCores));
        visit("aneArch", unlessEmpty(hardware.aneArch));
        visit("hasBattery", hardware.hasBattery);
        visit("isAppleSilicon", hardware.isAppleSilicon);
        visit("l3Cache", ifPositive(hardware.l3Cache));
        visit("baseClockHz", ifPositive(hardware.baseClockHz));
    }
};

template <>
struct Fields<sysinfo::GpuReading> {
    template <class Visit>
    static void each(const sysinfo::GpuReading& gpu, const Known&, Visit&& visit) {
        visit("name", unlessEmpty(gpu.device.name));
        visit("driver", unlessEmpty(gpu.device.driver));
        visit("slot", unlessEmpty(gpu.device.slot));
        visit("cores", ifPositive(gpu.device.cores));
        visit("asleep", gpu.asleep);
        visit("ownProcessesOnly", gpu.ownProcessesOnly);
        visit("busy", gpu.busy);
        visit("renderer", gpu.renderer);
        visit("tiler", gpu.tiler);
        visit("memUsed", gpu.memUsed);
        visit("memAlloc", gpu.memAlloc);
        visit("watts", gpu.watts);
    }
};

} // namespace quarn::cli
