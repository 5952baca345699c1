#include "core/linux/HardwareTopology.h"

#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/linux/HardwareCpuInfo.h"

#include <algorithm>

namespace sysinfo::platform {

namespace {

constexpr uint32_t mostCpus = 8192; // the kernel's NR_CPUS ends there

std::optional<uint64_t> readCount(const std::string& path) {
    const auto number = readNumber(path);
    return number && *number > 0 ? std::optional(static_cast<uint64_t>(*number)) : std::nullopt;
}

std::vector<uint32_t> listedIn(const SystemRoot& root, std::string_view relative) {
    return parseCpuList(readAttribute(root.path(relative)).value_or(""));
}

bool contains(const std::vector<uint32_t>& ids, uint32_t id) {
    return std::binary_search(ids.begin(), ids.end(), id);
}

std::vector<LogicalCpu::Cache> readCaches(const std::string& folder) {
    std::vector<LogicalCpu::Cache> caches;
    for (const std::string& name : listFolder(folder)) {
        if (!name.starts_with("index")) continue;
        const std::string index = folder + name + '/';
        const auto level = readCount(index + "level");
        const auto bytes = parseCacheSize(readAttribute(index + "size").value_or(""));
        if (!level || !bytes) continue;
        const std::string type = readAttribute(index + "type").value_or("");
        auto sharedBy = readAttribute(index + "shared_cpu_list");
        if (!sharedBy) sharedBy = readAttribute(index + "shared_cpu_map");
        caches.push_back({static_cast<uint32_t>(*level),
                          type == "Data"          ? LogicalCpu::CacheType::data
                          : type == "Instruction" ? LogicalCpu::CacheType::instruction
                                                  : LogicalCpu::CacheType::unified,
                          *bytes, sharedBy.value_or("")});
    }
    return caches;
}

/// The kinds of a hybrid x86 processor, which has one performance monitor for each.
struct HybridKinds {
    explicit HybridKinds(const SystemRoot& root)
        : performance(listedIn(root, "sys/devices/cpu_core/cpus")),
          efficiency(listedIn(root, "sys/devices/cpu_atom/cpus")),
          lowPower(listedIn(root, "sys/devices/cpu_lowpower/cpus")) {}

    LogicalCpu::Class of(uint32_t id) const {
        if (contains(efficiency, id) || contains(lowPower, id)) return LogicalCpu::Class::efficiency;
        return contains(performance, id) ? LogicalCpu::Class::performance : LogicalCpu::Class::unknown;
    }

    std::vector<uint32_t> performance, efficiency, lowPower;
};

LogicalCpu describeCpu(const std::string& cpus, uint32_t id, const HybridKinds& kinds) {
    const std::string number = std::to_string(id);
    const std::string folder = cpus + "cpu" + number + '/';
    LogicalCpu cpu;
    cpu.id = id;
    // The list of siblings, not core_id: that number repeats from one package, die or book to the next.
    auto siblings = readAttribute(folder + "topology/thread_siblings_list");
    if (!siblings) siblings = readAttribute(folder + "topology/core_cpus_list");
    cpu.core = siblings.value_or(number);
    cpu.kind = kinds.of(id);
    cpu.capacity = readCount(folder + "cpu_capacity");
    // A machine links its policies below each CPU; captures may keep only the policies.
    std::string policy = folder + "cpufreq/";
    if (!exists(policy)) policy = cpus + "cpufreq/policy" + number + '/';
    cpu.maxFreqKHz = readCount(policy + "cpuinfo_max_freq");
    cpu.baseFreqKHz = readCount(policy + "base_frequency");
    if (!cpu.baseFreqKHz)
        if (const auto mhz = readCount(folder + "acpi_cppc/nominal_freq")) cpu.baseFreqKHz = *mhz * 1000;
    cpu.caches = readCaches(folder + "cache/");
    return cpu;
}

/// The CPUs that are online, from what this kernel or capture offers.
std::vector<uint32_t> onlineCpus(const SystemRoot& root, const std::string& cpus) {
    auto online = listedIn(root, "sys/devices/system/cpu/online");
    if (!online.empty()) return online;
    for (const std::string& name : listFolder(cpus)) {
        const auto id = name.starts_with("cpu") ? scutil::toNumber<uint32_t>(name.substr(3)) : std::nullopt;
        if (id && readNumber(cpus + name + "/online").value_or(1) != 0) online.push_back(*id);
    }
    std::sort(online.begin(), online.end());
    return online;
}

/// The CPUs of proc/cpuinfo, for a machine without the folders of sys.
std::vector<LogicalCpu> cpusOfCpuInfo(const SystemRoot& root) {
    std::vector<LogicalCpu> cpus;
    for (const auto& processor : parseCpuInfo(readTable(root.path("proc/cpuinfo")).value_or("")).processors) {
        LogicalCpu cpu;
        cpu.id = processor.id;
        cpu.core = processor.package.empty() && processor.core.empty()
                       ? std::to_string(processor.id)
                       : processor.package + ':' + processor.core;
        cpus.push_back(std::move(cpu));
    }
    return cpus;
}

} // namespace

std::vector<uint32_t> parseCpuList(std::string_view text) {
    std::vector<uint32_t> ids;
    while (!text.empty()) {
        std::string_view range = scutil::trimmed(scutil::takeUntil(text, ','));
        const auto first = scutil::toNumber<uint32_t>(scutil::takeUntil(range, '-'));
        const auto last = range.empty() ? first : scutil::toNumber<uint32_t>(range);
        if (!first || !last || *last >= mostCpus) break;
        for (uint32_t id = *first; id <= *last; ++id) ids.push_back(id);
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

std::optional<uint64_t> parseCacheSize(std::string_view text) {
    unsigned shift = 0;
    if (!text.empty()) {
        shift = text.back() == 'K' ? 10 : text.back() == 'M' ? 20 : text.back() == 'G' ? 30 : 0;
        if (shift) text.remove_suffix(1);
    }
    const auto number = scutil::toNumber<uint32_t>(text);
    return number ? std::optional(uint64_t{*number} << shift) : std::nullopt;
}

std::vector<LogicalCpu> readLogicalCpus(const SystemRoot& root) {
    const std::string folder = root.path("sys/devices/system/cpu/");
    const HybridKinds kinds(root);
    std::vector<LogicalCpu> cpus;
    for (const uint32_t id : onlineCpus(root, folder)) cpus.push_back(describeCpu(folder, id, kinds));
    return cpus.empty() ? cpusOfCpuInfo(root) : cpus;
}

} // namespace sysinfo::platform
