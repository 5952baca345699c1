#include "history/AppMetrics.h"

#include "history/ByteCount.h"

namespace quarn {

namespace {

// The weights of the score: a second of one core, a megabyte of disk traffic, a thousand context switches.
constexpr double perCpuSecond = 100;
constexpr double perDiskMegabyte = 0.4;
constexpr double perThousandSwitches = 0.3;

} // namespace

void AppMetrics::add(const AppActivity& activity, double interval) {
    const AppGrowth& growth = activity.growth;
    seconds += interval;
    memoryByteSeconds += interval * static_cast<double>(activity.memBytes);
    peakMemoryBytes = std::max(peakMemoryBytes, byteCount(activity.memBytes));
    if (growth.energyKnown) energySeconds += interval;
    const double cpu = static_cast<double>(growth.cpuNs) / 1e9;
    const double disk = static_cast<double>(growth.diskRead) + static_cast<double>(growth.diskWrite);
    cpuSeconds += cpu;
    addBytes(diskReadBytes, growth.diskRead);
    addBytes(diskWriteBytes, growth.diskWrite);
    energyImpact += cpu * perCpuSecond + disk / 1e6 * perDiskMegabyte +
                    static_cast<double>(growth.contextSwitches) / 1000 * perThousandSwitches;
    energyJoules += static_cast<double>(growth.energyNj) / 1e9;
}

} // namespace quarn
