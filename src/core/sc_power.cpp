#include "core/IOReport.h"
#include "core/NeuralEngine.h"
#include "core/platform.h"
#include "core/sc.h"

#include <climits>
#include <cstdio>

namespace sysinfo {

IOReport& IOReport::shared() {
    // Never destroyed: its counters are wanted until the last moment of the program.
    static auto* instance = new IOReport(platform::openEnergySource(SystemRoot::host()),
                                         platform::monotonicRawNs, [] { return sc_smc_read_float("PSTR"); });
    return *instance;
}

} // namespace sysinfo

SCPower sc_power_sample() { return sysinfo::IOReport::shared().sample(); }

bool sc_ane_info(uint32_t* cores, char* arch, uint32_t archSize) {
    const bool archUsable = arch && archSize > 0 && archSize <= INT_MAX;
    if (archUsable) arch[0] = '\0';
    if (!cores) return false;
    *cores = 0;
    const auto engine = sysinfo::platform::findNeuralEngine(sysinfo::SystemRoot::host());
    if (!engine) return false;
    *cores = engine->cores;
    if (archUsable) std::snprintf(arch, archSize, "%s", engine->arch.c_str());
    return true;
}
