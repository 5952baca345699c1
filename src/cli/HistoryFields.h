#pragma once

#include "cli/Fields.h"
#include "history/MetricsReads.h"

namespace quarn::cli {

template <>
struct Fields<SystemMetrics> {
    template <class Visit>
    static void each(const SystemMetrics& metrics, const Known&, Visit&& visit) {
        const bool observed = metrics.seconds > 0, measured = metrics.powerSeconds > 0;
        visit("seconds", metrics.seconds);
        visit("cpuSeconds", when(observed, metrics.cpuSeconds));
        visit("peakCPUPercent", when(observed, metrics.peakCPUPercent));
        visit("memoryByteSeconds", when(observed, metrics.memoryByteSeconds));
        visit("peakMemoryBytes", when(observed, metrics.peakMemoryBytes));
        visit("peakSwapBytes", when(observed, metrics.peakSwapBytes));
        visit("diskReadBytes", when(observed, metrics.diskReadBytes));
        visit("diskWriteBytes", when(observed, metrics.diskWriteBytes));
        visit("networkInBytes", when(observed, metrics.networkInBytes));
        visit("networkOutBytes", when(observed, metrics.networkOutBytes));
        visit("energyJoules", when(measured, metrics.energyJoules));
        visit("powerSeconds", metrics.powerSeconds);
    }
};

template <>
struct Fields<AppMetrics> {
    template <class Visit>
    static void each(const AppMetrics& metrics, const Known&, Visit&& visit) {
        visit("seconds", metrics.seconds);
        visit("cpuSeconds", metrics.cpuSeconds);
        visit("memoryByteSeconds", metrics.memoryByteSeconds);
        visit("peakMemoryBytes", metrics.peakMemoryBytes);
        visit("diskReadBytes", metrics.diskReadBytes);
        visit("diskWriteBytes", metrics.diskWriteBytes);
        visit("energyImpact", metrics.energyImpact);
        visit("networkInBytes", metrics.networkInBytes);
        visit("networkOutBytes", metrics.networkOutBytes);
        visit("energyJoules", when(metrics.energySeconds > 0, metrics.energyJoules));
        visit("energySeconds", metrics.energySeconds);
    }
};

} // namespace quarn::cli
