#include "core/CpuTopology.h"

#include <algorithm>
#include <set>
#include <string_view>

namespace sysinfo {

namespace {

using Class = LogicalCpu::Class;
using CacheType = LogicalCpu::CacheType;
using Figure = std::optional<uint64_t> LogicalCpu::*;

bool allHave(std::span<const LogicalCpu> cpus, Figure figure) {
    return std::all_of(cpus.begin(), cpus.end(), [&](const LogicalCpu& cpu) { return cpu.*figure; });
}

/// The class of each CPU by a figure that every CPU has.
std::vector<Class> classesBy(std::span<const LogicalCpu> cpus, Figure figure) {
    const auto [weakest, strongest] =
        std::minmax_element(cpus.begin(), cpus.end(), [&](const LogicalCpu& a, const LogicalCpu& b) {
            return *(a.*figure) < *(b.*figure);
        });
    const auto lowest = static_cast<double>(*((*weakest).*figure));
    if (lowest >= 0.8 * static_cast<double>(*((*strongest).*figure))) return {};
    std::vector<Class> classes;
    for (const LogicalCpu& cpu : cpus)
        classes.push_back(static_cast<double>(*(cpu.*figure)) <= 1.15 * lowest ? Class::efficiency
                                                                               : Class::performance);
    return classes;
}

/// The class of each CPU; empty when all are of one kind.
std::vector<Class> classes(std::span<const LogicalCpu> cpus) {
    if (cpus.empty()) return {};
    std::vector<Class> named;
    for (const LogicalCpu& cpu : cpus) named.push_back(cpu.kind);
    const auto has = [&](Class kind) { return std::find(named.begin(), named.end(), kind) != named.end(); };
    if (has(Class::performance) && has(Class::efficiency)) return named;
    if (allHave(cpus, &LogicalCpu::capacity)) return classesBy(cpus, &LogicalCpu::capacity);
    if (allHave(cpus, &LogicalCpu::maxFreqKHz)) return classesBy(cpus, &LogicalCpu::maxFreqKHz);
    return {};
}

uint64_t cacheBytes(const LogicalCpu* cpu, uint32_t level, CacheType type) {
    if (!cpu) return 0;
    for (const auto& cache : cpu->caches)
        if (cache.level == level && (cache.type == type || cache.type == CacheType::unified))
            return cache.bytes;
    return 0;
}

} // namespace

CpuLayout deriveCpuLayout(std::span<const LogicalCpu> cpus) {
    CpuLayout layout;
    layout.logical = static_cast<uint32_t>(cpus.size());
    const std::vector<Class> kinds = classes(cpus);

    std::set<std::string_view> cores;
    std::set<std::string_view> lastLevels;
    const LogicalCpu* performance = nullptr;
    const LogicalCpu* efficiency = nullptr;
    for (size_t i = 0; i < cpus.size(); ++i) {
        const bool isEfficiency = !kinds.empty() && kinds[i] == Class::efficiency;
        const LogicalCpu*& first = isEfficiency ? efficiency : performance;
        if (!first) first = &cpus[i];
        for (const auto& cache : cpus[i].caches)
            if (cache.level == 3 && lastLevels.insert(cache.sharedBy).second) layout.l3Cache += cache.bytes;
        if (!cores.insert(cpus[i].core).second) continue;
        ++layout.physical;
        if (!kinds.empty()) ++(isEfficiency ? layout.efficiency : layout.performance);
    }
    layout.l1iCache = cacheBytes(performance, 1, CacheType::instruction);
    layout.l1dCache = cacheBytes(performance, 1, CacheType::data);
    layout.l2Cache = cacheBytes(performance, 2, CacheType::data);
    layout.l2CacheE = cacheBytes(efficiency, 2, CacheType::data);
    if (performance) layout.baseClockHz = performance->baseFreqKHz.value_or(0) * 1000;
    return layout;
}

} // namespace sysinfo
