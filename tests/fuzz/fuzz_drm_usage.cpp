#include "Fuzz.h"
#include "core/linux/GpuClients.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace sysinfo::platform;
    const std::string_view text = textOf(data, size);
    // Two texts of one input, so that counters can rise, fall and vanish between samples.
    const size_t middle = size / 2;
    DrmLoads loads;
    for (const auto part : {text.substr(0, middle), text.substr(middle), text}) {
        const auto usage = parseDrmUsage(part);
        if (!usage) continue;
        for (const auto& load : loads.advance({*usage, *usage}, 1))
            require(!load.busy || (*load.busy >= 0 && *load.busy <= 100));
    }
    return 0;
}
