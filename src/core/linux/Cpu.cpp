#include "core/linux/Cpu.h"

#include "core/Scan.h"
#include "core/linux/Readers.h"

#include <array>

namespace sysinfo::platform {

bool parseCpuTicks(std::string_view text, CpuTicks& out) {
    out.ids.clear();
    out.ticks.clear();
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        if (!line.starts_with("cpu")) break; // the CPU lines come first
        const auto id = scutil::toNumber<uint32_t>(scutil::takeWord(line).substr(3));
        if (!id) continue; // the sum over all CPUs has no number
        enum Column { user, nice, system, idle, iowait, irq, softirq, steal, columns };
        std::array<uint64_t, columns> value;
        for (auto& column : value) column = scutil::takeNumber(line);
        out.ids.push_back(*id);
        out.ticks.insert(out.ticks.end(),
                         {value[user], value[system] + value[irq] + value[softirq] + value[steal],
                          value[idle] + value[iowait], value[nice]});
    }
    return !out.ids.empty();
}

std::optional<uint64_t> parseStatNumber(std::string_view text, std::string_view key) {
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        if (line.starts_with(key) && scutil::takeWord(line) == key)
            return scutil::toNumber<uint64_t>(scutil::takeWord(line));
    }
    return {};
}

std::optional<uint64_t> contextSwitches(Readers& readers) {
    const auto text = readers.stat.read();
    return text ? parseStatNumber(*text, "ctxt") : std::nullopt;
}

bool readCpuTicks(Readers& readers, CpuTicks& out) {
    const auto text = readers.stat.read();
    return text && parseCpuTicks(*text, out);
}

} // namespace sysinfo::platform
