// The kernel's text tables of CPUs, memory and processes. The first byte chooses the parser.
#include "Fuzz.h"
#include "core/linux/Cpu.h"
#include "core/linux/Memory.h"
#include "core/linux/ProcessFiles.h"

using namespace sysinfo::platform;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::string_view text = textOf(data + 1, size - 1);
    switch (data[0] % 6) {
    case 0: {
        CpuTicks ticks;
        require(parseCpuTicks(text, ticks) == !ticks.ids.empty());
        require(ticks.ticks.size() == 4 * ticks.ids.size());
        break;
    }
    case 1: {
        MemInfo info;
        require(parseMemInfo(text, info) == (info.memTotal > 0));
        break;
    }
    case 2: parseVmStat(text); break;
    case 3: parseMemoryPressure(text); break;
    case 4:
        if (const auto stat = parseProcessStat(text))
            require(stat->comm.empty() || text.find(stat->comm) != std::string_view::npos);
        break;
    default:
        parseProcessStatus(text);
        parseCommandLine(text);
        parseProcessIo(text);
        break;
    }
    return 0;
}
