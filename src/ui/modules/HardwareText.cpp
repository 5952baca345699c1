#include "ui/modules/HardwareText.h"

#include "ui/modules/Format.h"

#include <fmt/format.h>

namespace quarn {

std::string coresText(const Hardware& hardware) {
    if (hardware.physCpu <= 0) return {};
    std::string text = fmt::format("{}", hardware.physCpu);
    if (hardware.effCores > 0)
        text += fmt::format(" ({} performance, {} efficiency)", hardware.perfCores, hardware.effCores);
    if (hardware.ncpu != hardware.physCpu) text += fmt::format(", {} threads", hardware.ncpu);
    return text;
}

std::string clockText(uint64_t hertz) {
    return hertz > 0 ? fmt::format("{:.2f} GHz", static_cast<double>(hertz) / 1e9) : std::string();
}

std::string cachesText(const Hardware& hardware) {
    std::string text;
    const auto add = [&](std::string_view level, const std::string& size) {
        if (!size.empty()) text += fmt::format("{}{} {}", text.empty() ? "" : ", ", level, size);
    };
    const auto size = [](uint64_t bytes) { return bytes > 0 ? format::memory(bytes) : std::string(); };
    const std::string instructions = size(hardware.l1iCache), data = size(hardware.l1dCache);
    add("L1", instructions + (instructions.empty() || data.empty() ? "" : " + ") + data);
    add("L2", size(hardware.l2Cache));
    add("L3", size(hardware.l3Cache));
    return text;
}

} // namespace quarn
