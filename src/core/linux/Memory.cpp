#include "core/linux/Memory.h"

#include "core/Scan.h"
#include "core/linux/Readers.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace sysinfo::platform {

namespace {

/// How many readings pass between two looks for new compressed RAM disks.
constexpr unsigned zramLookEvery = 64;

uint64_t minus(uint64_t a, uint64_t b) { return a > b ? a - b : 0; }

/// Memory that the compressed RAM disks occupy: the third column of their mm_stat.
uint64_t zramBytes(Readers& readers) {
    if (readers.zramAge == 0) {
        readers.zram.clear();
        for (const auto& name : listFolder(readers.root.path("sys/block")))
            if (name.starts_with("zram"))
                readers.zram.emplace_back(readers.root, "sys/block/" + name + "/mm_stat");
        readers.zramAge = zramLookEvery;
    }
    --readers.zramAge;
    uint64_t sum = 0;
    for (auto& disk : readers.zram)
        if (auto text = disk.read()) {
            std::string_view line = scutil::takeLine(*text);
            scutil::takeWord(line);
            scutil::takeWord(line);
            sum += scutil::takeNumber(line);
        }
    return sum;
}

double averageAfter(std::string_view line, std::string_view key) {
    const size_t at = line.find(key);
    if (at == std::string_view::npos) return 0;
    line.remove_prefix(at + key.size());
    return scutil::toNumber<double>(scutil::takeWord(line)).value_or(0);
}

} // namespace

bool parseMemInfo(std::string_view text, MemInfo& out) {
    struct Row {
        std::string_view key;
        uint64_t MemInfo::*field;
    };
    static constexpr std::array rows{
        Row{"MemTotal", &MemInfo::memTotal},     Row{"MemFree", &MemInfo::memFree},
        Row{"Buffers", &MemInfo::buffers},       Row{"Cached", &MemInfo::cached},
        Row{"Active", &MemInfo::active},         Row{"Inactive", &MemInfo::inactive},
        Row{"SwapTotal", &MemInfo::swapTotal},   Row{"SwapFree", &MemInfo::swapFree},
        Row{"Zswap", &MemInfo::zswap},           Row{"AnonPages", &MemInfo::anonPages},
        Row{"Shmem", &MemInfo::shmem},           Row{"SReclaimable", &MemInfo::sReclaimable},
        Row{"SUnreclaim", &MemInfo::sUnreclaim}, Row{"KernelStack", &MemInfo::kernelStack},
        Row{"PageTables", &MemInfo::pageTables}, Row{"SecPageTables", &MemInfo::secPageTables},
        Row{"Percpu", &MemInfo::percpu},         Row{"Hugetlb", &MemInfo::hugetlb},
    };
    out = {};
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        const std::string_view key = scutil::takeUntil(line, ':');
        const uint64_t bytes = scutil::takeNumber(line) * 1024;
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& r) { return r.key == key; });
        if (row != rows.end())
            out.*row->field = bytes;
        else if (key == "MemAvailable")
            out.memAvailable = bytes;
        else if (key == "KReclaimable")
            out.kReclaimable = bytes;
    }
    return out.memTotal > 0;
}

VmStat parseVmStat(std::string_view text) {
    VmStat stat;
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        // Nearly two hundred lines come; two characters tell most of them apart.
        if (line.size() < 6 || !((line[0] == 'p' && (line[1] == 'g' || line[1] == 's')) || line[0] == 'z'))
            continue;
        const std::string_view key = scutil::takeUntil(line, ' ');
        const auto field = key == "pgpgin"    ? &VmStat::pgpgin
                           : key == "pgpgout" ? &VmStat::pgpgout
                           : key == "pswpin"  ? &VmStat::pswpin
                           : key == "pswpout" ? &VmStat::pswpout
                           : key == "pgfault" ? &VmStat::pgfault
                           : key == "zswpin"  ? &VmStat::zswpin
                           : key == "zswpout" ? &VmStat::zswpout
                                              : nullptr;
        if (field) stat.*field = scutil::takeNumber(line);
    }
    return stat;
}

MemoryPressure parseMemoryPressure(std::string_view text) {
    MemoryPressure pressure;
    while (!text.empty()) {
        const std::string_view line = scutil::takeLine(text);
        if (line.starts_with("some ")) pressure.someAvg10 = averageAfter(line, "avg10=");
        if (line.starts_with("full ")) pressure.fullAvg10 = averageAfter(line, "avg10=");
    }
    return pressure;
}

uint32_t memoryPressureLevel(uint64_t available, uint64_t total, const MemoryPressure& pressure) {
    if (available < total / 25 || pressure.fullAvg10 >= 10) return 4;
    if (available < total / 10 || pressure.someAvg10 >= 10) return 2;
    return 1;
}

bool readMemoryCounters(Readers& readers, MemoryCounters& out) {
    out = {};
    const auto text = readers.meminfo.read();
    MemInfo info;
    if (!text || !parseMemInfo(*text, info)) return false;
    out.total = info.memTotal;
    out.pageSize = static_cast<uint64_t>(::sysconf(_SC_PAGESIZE));
    out.statisticsKnown = true;
    out.purgeable = info.kReclaimable.value_or(info.sReclaimable);
    out.internal = info.anonPages + info.shmem + out.purgeable;
    out.external = minus(info.cached + info.buffers, info.shmem);
    out.wired = info.sUnreclaim + info.kernelStack + info.pageTables + info.secPageTables + info.percpu +
                info.hugetlb;
    out.compressed = info.zswap + zramBytes(readers);
    out.free = info.memFree;
    out.active = info.active;
    out.inactive = info.inactive;
    out.swapTotal = info.swapTotal;
    out.swapFree = info.swapFree;

    if (const auto vmstat = readers.vmstat.read()) {
        const VmStat stat = parseVmStat(*vmstat);
        out.pageIns = stat.pgpgin * 1024 / out.pageSize;
        out.pageOuts = stat.pgpgout * 1024 / out.pageSize;
        out.faults = stat.pgfault;
        out.swapIns = stat.pswpin;
        out.swapOuts = stat.pswpout;
        out.compressions = stat.zswpout;
        out.decompressions = stat.zswpin;
    }

    // Kernels before 3.14 do not say what is available.
    const uint64_t available =
        std::min(info.memAvailable.value_or(out.free + out.external + out.purgeable), out.total);
    const auto psi = readers.memoryPressure.read();
    out.pressureLevel =
        memoryPressureLevel(available, out.total, psi ? parseMemoryPressure(*psi) : MemoryPressure{});
    out.freePercent = static_cast<uint32_t>(available * 100 / out.total);
    return true;
}

MemoryCapabilities memoryCapabilities() { return {}; }

} // namespace sysinfo::platform
