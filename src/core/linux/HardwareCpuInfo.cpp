#include "core/linux/HardwareCpuInfo.h"

#include "core/CleanText.h"
#include "core/Scan.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sysinfo::platform {

namespace {

struct ArmName {
    uint32_t implementer;
    uint32_t part;
    std::string_view name;
};

/// By implementer and part, as the manufacturers number their cores.
constexpr std::array armNames{
    ArmName{0x41, 0xc05, "Cortex-A5"},    ArmName{0x41, 0xc07, "Cortex-A7"},
    ArmName{0x41, 0xc08, "Cortex-A8"},    ArmName{0x41, 0xc09, "Cortex-A9"},
    ArmName{0x41, 0xc0d, "Cortex-A17"},   ArmName{0x41, 0xc0e, "Cortex-A17"},
    ArmName{0x41, 0xc0f, "Cortex-A15"},   ArmName{0x41, 0xd03, "Cortex-A53"},
    ArmName{0x41, 0xd04, "Cortex-A35"},   ArmName{0x41, 0xd05, "Cortex-A55"},
    ArmName{0x41, 0xd07, "Cortex-A57"},   ArmName{0x41, 0xd08, "Cortex-A72"},
    ArmName{0x41, 0xd09, "Cortex-A73"},   ArmName{0x41, 0xd0a, "Cortex-A75"},
    ArmName{0x41, 0xd0b, "Cortex-A76"},   ArmName{0x41, 0xd0c, "Neoverse-N1"},
    ArmName{0x41, 0xd0d, "Cortex-A77"},   ArmName{0x41, 0xd40, "Neoverse-V1"},
    ArmName{0x41, 0xd41, "Cortex-A78"},   ArmName{0x41, 0xd42, "Cortex-A78AE"},
    ArmName{0x41, 0xd44, "Cortex-X1"},    ArmName{0x41, 0xd46, "Cortex-A510"},
    ArmName{0x41, 0xd47, "Cortex-A710"},  ArmName{0x41, 0xd48, "Cortex-X2"},
    ArmName{0x41, 0xd49, "Neoverse-N2"},  ArmName{0x41, 0xd4a, "Neoverse-E1"},
    ArmName{0x41, 0xd4b, "Cortex-A78C"},  ArmName{0x41, 0xd4c, "Cortex-X1C"},
    ArmName{0x41, 0xd4d, "Cortex-A715"},  ArmName{0x41, 0xd4e, "Cortex-X3"},
    ArmName{0x41, 0xd4f, "Neoverse-V2"},  ArmName{0x41, 0xd80, "Cortex-A520"},
    ArmName{0x41, 0xd81, "Cortex-A720"},  ArmName{0x41, 0xd82, "Cortex-X4"},
    ArmName{0x41, 0xd84, "Neoverse-V3"},  ArmName{0x41, 0xd85, "Cortex-X925"},
    ArmName{0x41, 0xd87, "Cortex-A725"},  ArmName{0x41, 0xd8e, "Neoverse-N3"},
    ArmName{0x43, 0x0a1, "ThunderX"},     ArmName{0x43, 0x0af, "ThunderX2"},
    ArmName{0x46, 0x001, "A64FX"},        ArmName{0x48, 0xd01, "Kunpeng-920"},
    ArmName{0x4e, 0x004, "Carmel"},       ArmName{0x50, 0x000, "X-Gene"},
    ArmName{0x51, 0x001, "Oryon"},        ArmName{0x61, 0x022, "Apple M1"},
    ArmName{0x61, 0x023, "Apple M1"},     ArmName{0x61, 0x024, "Apple M1 Pro"},
    ArmName{0x61, 0x025, "Apple M1 Pro"}, ArmName{0x61, 0x028, "Apple M1 Max"},
    ArmName{0x61, 0x029, "Apple M1 Max"}, ArmName{0x61, 0x032, "Apple M2"},
    ArmName{0x61, 0x033, "Apple M2"},     ArmName{0x61, 0x034, "Apple M2 Pro"},
    ArmName{0x61, 0x035, "Apple M2 Pro"}, ArmName{0x61, 0x038, "Apple M2 Max"},
    ArmName{0x61, 0x039, "Apple M2 Max"}, ArmName{0x6d, 0xd49, "Azure Cobalt 100"},
    ArmName{0xc0, 0xac3, "Ampere-1"},     ArmName{0xc0, 0xac4, "Ampere-1a"},
};

/// The lines that name the processor; the first that a file has wins.
constexpr std::array<std::string_view, 6> nameKeys{"model name", "cpu model", "cpu",
                                                   "Processor",  "uarch",     "vendor_id"};

std::string oneBlank(std::string_view text) {
    std::string result;
    const std::string clean = scutil::cleanText(text);
    std::string_view rest = clean;
    for (auto word = scutil::takeWord(rest); !word.empty(); word = scutil::takeWord(rest))
        result += (result.empty() ? "" : " ") + std::string(word);
    return result;
}

uint32_t hexNumber(std::string_view text) {
    if (text.starts_with("0x")) text.remove_prefix(2);
    return scutil::toNumber<uint32_t>(text, 16).value_or(0);
}

class CpuInfoParser {
public:
    CpuInfo parse(std::string_view text) {
        while (!text.empty()) {
            std::string_view line = scutil::takeLine(text);
            const std::string_view key = scutil::trimmed(scutil::takeUntil(line, ':'));
            take(key, scutil::trimmed(line));
        }
        for (auto& name : names_)
            if (info_.name.empty()) info_.name = std::move(name);
        return std::move(info_);
    }

private:
    void take(std::string_view key, std::string_view value) {
        // Older s390 kernels write "processor 7: version = …", all others "processor : 7".
        if (key == "processor") return addProcessor(value);
        if (key.starts_with("processor ")) return addProcessor(key.substr(10));
        for (size_t i = 0; i < nameKeys.size(); ++i)
            if (key == nameKeys[i] && names_[i].empty()) names_[i] = oneBlank(value);
        if (key == "flags" || key == "Features" || key == "features") takeFlags(key, value);
        if (key == "Hardware") info_.hardware = scutil::cleanText(value);
        if (key == "CPU implementer") implementer_ = hexNumber(value);
        if (key == "CPU part") takePart({implementer_, hexNumber(value)});
        if (key == "CPU architecture") info_.arch = value == "8" || value == "AArch64" ? "aarch64" : "armv7l";
        if (key == "isa") info_.arch = std::string(value.substr(0, 4)) == "rv32" ? "riscv32" : "riscv64";
        if (key == "vendor_id" && value == "IBM/S390") info_.arch = "s390x";
        if (info_.processors.empty()) return;
        if (key == "physical id") info_.processors.back().package = value;
        if (key == "core id") info_.processors.back().core = value;
    }

    void addProcessor(std::string_view number) {
        if (const auto id = scutil::toNumber<uint32_t>(scutil::trimmed(number)))
            info_.processors.push_back({*id, {}, {}});
    }

    void takeFlags(std::string_view key, std::string_view value) {
        if (!info_.flags.empty()) return;
        info_.flags = value;
        if (key == "flags") info_.arch = hasFlag(value, "lm") ? "x86_64" : "i686";
    }

    void takePart(CpuInfo::ArmPart part) {
        auto& parts = info_.armParts;
        if (std::find(parts.begin(), parts.end(), part) == parts.end()) parts.push_back(part);
    }

    CpuInfo info_;
    std::array<std::string, nameKeys.size()> names_;
    uint32_t implementer_ = 0;
};

} // namespace

CpuInfo parseCpuInfo(std::string_view text) { return CpuInfoParser().parse(text); }

bool hasFlag(std::string_view flags, std::string_view word) {
    for (auto flag = scutil::takeWord(flags); !flag.empty(); flag = scutil::takeWord(flags))
        if (flag == word) return true;
    return false;
}

std::string processorName(const CpuInfo& info) {
    std::string cores;
    std::string_view last;
    // Systems number their small cores first.
    for (auto part = info.armParts.rbegin(); part != info.armParts.rend(); ++part)
        for (const ArmName& row : armNames) {
            if (row.implementer != part->implementer || row.part != part->part || row.name == last) continue;
            cores += (cores.empty() ? "" : ", ") + std::string(row.name);
            last = row.name;
        }
    return cores.empty() ? info.name : cores;
}

uint64_t clockOfName(std::string_view name) {
    const size_t at = name.rfind('@');
    if (at == std::string_view::npos) return 0;
    std::string_view clock = scutil::trimmed(name.substr(at + 1));
    const double unit = clock.ends_with("GHz") ? 1e9 : clock.ends_with("MHz") ? 1e6 : 0;
    if (unit == 0) return 0;
    const auto value = scutil::toNumber<double>(scutil::trimmed(clock.substr(0, clock.size() - 3)));
    return value && *value > 0 && *value < 1e5 ? static_cast<uint64_t>(std::llround(*value * unit)) : 0;
}

} // namespace sysinfo::platform
