#include "ui/modules/Attention.h"

#include "monitor/SensorGroups.h"
#include "ui/modules/Format.h"
#include "ui/modules/MemoryParts.h"
#include "ui/settings/Prefs.h"

#include <algorithm>
#include <fmt/format.h>

namespace quarn {

namespace {

constexpr double fullSwapPercent = 90;
constexpr double busySwapRate = 10e6;   ///< bytes a second that programs wait for
constexpr double hardlyFreePercent = 2; ///< of a volume
constexpr double hardlyChargedPercent = 5;
constexpr double uncollected = 10; ///< seconds; most parents collect at once

double share(double part, double whole) { return whole > 0 ? part * 100 / whole : 0; }

AttentionLevel graver(AttentionLevel level, bool isCritical) {
    return isCritical ? AttentionLevel::critical : level;
}

void lookAtMemory(const Snapshot& snapshot, const Known& known, const AttentionLimits& limits,
                  std::vector<AttentionItem>& items) {
    const SCMem& mem = snapshot.mem;
    if (!known.memory) return;
    const bool isShort = mem.pressureLevel >= 2;
    if (isShort)
        items.push_back({graver(AttentionLevel::warning, mem.pressureLevel >= 4),
                         std::string(pressureText(mem.pressureLevel)),
                         fmt::format("{} % can be given to programs without swapping", mem.freePercent),
                         "memory",
                         {}});
    const double swapped =
        (snapshot.rates.swapIn + snapshot.rates.swapOut) * static_cast<double>(mem.pageSize);
    if (known.rates && swapped >= busySwapRate)
        items.push_back({AttentionLevel::warning,
                         "Memory is being swapped",
                         format::rate(swapped) + "; programs wait for the disk",
                         "memory",
                         {}});
    const auto used = static_cast<double>(mem.swapUsed);
    if (mem.swapTotal == 0) return;
    const bool full = share(used, static_cast<double>(mem.swapTotal)) >= fullSwapPercent;
    if (full || used > limits.swapBytes)
        items.push_back({full && isShort ? AttentionLevel::warning : AttentionLevel::note,
                         full ? "Swap is nearly full" : "Much swap is in use",
                         format::memory(mem.swapUsed) + " of " + format::memory(mem.swapTotal),
                         "memory",
                         {}});
}

void lookAtVolumes(std::span<const Volume> volumes, const AttentionLimits& limits,
                   std::vector<AttentionItem>& items) {
    std::vector<const Volume*> told;
    for (const Volume& volume : volumes) {
        // Optical media are full by nature; what is mounted in several places is one volume.
        if (volume.total == 0 || volume.fs == "iso9660" || volume.fs == "udf") continue;
        const double free = share(static_cast<double>(volume.free), static_cast<double>(volume.total));
        const auto isSame = [&](const Volume* other) {
            return other->device == volume.device && other->total == volume.total &&
                   other->free == volume.free;
        };
        if (free >= limits.freeSpacePercent || std::any_of(told.begin(), told.end(), isSame)) continue;
        told.push_back(&volume);
        items.push_back({graver(AttentionLevel::warning, free < hardlyFreePercent),
                         volume.mount + (free < hardlyFreePercent ? " is full" : " is nearly full"),
                         format::diskSize(volume.free) + " of " + format::diskSize(volume.total) + " free",
                         "disks",
                         {}});
    }
}

void lookAtHeat(const Snapshot& snapshot, const AttentionLimits& limits, const ReadingStyle& style,
                std::vector<AttentionItem>& items) {
    const auto naming = snapshot.isAppleSilicon ? SensorNaming::appleSilicon : SensorNaming::intel;
    const auto slots = SensorGroups::slotNames(naming);
    for (const auto& hottest : SensorGroups::maxima({snapshot.temps.data(), snapshot.temps.size()}, naming)) {
        if (hottest.celsius <= limits.celsius) continue;
        const auto slot = std::find_if(slots.begin(), slots.end(),
                                       [&](const auto& one) { return one.prefix == hottest.prefix; });
        items.push_back({AttentionLevel::warning,
                         fmt::format("{} is hot", slot->name),
                         temperatureText(hottest.celsius, style),
                         "sensors",
                         {}});
    }
    if (snapshot.thermalState >= ThermalState::serious)
        items.push_back({graver(AttentionLevel::warning, snapshot.thermalState == ThermalState::critical),
                         "The machine slows down to stay cool",
                         fmt::format("Its thermal state is {}", thermalStateName(snapshot.thermalState)),
                         "sensors",
                         {}});
}

void lookAtBattery(const Snapshot& snapshot, const AttentionLimits& limits,
                   std::vector<AttentionItem>& items) {
    const auto& battery = snapshot.battery;
    if (!battery || !battery->present || battery->onAC || battery->charging || battery->percent < 0) return;
    const auto percent = static_cast<double>(battery->percent);
    if (percent >= limits.batteryPercent) return;
    std::string detail = fmt::format("{} %", battery->percent);
    if (battery->timeToEmptyMin >= 0)
        detail += ", " + format::duration(60 * static_cast<double>(battery->timeToEmptyMin)) + " left";
    items.push_back({graver(AttentionLevel::warning, percent < hardlyChargedPercent),
                     "The battery is low",
                     detail,
                     "power",
                     {}});
}

const ProcInfo* find(const SharedList<ProcInfo>& processes, int64_t pid) {
    const auto* found =
        std::lower_bound(processes.begin(), processes.end(), pid,
                         [](const ProcInfo& process, int64_t at) { return process.pid < at; });
    return found != processes.end() && found->pid == pid ? found : nullptr;
}

} // namespace

AttentionLimits attentionLimits(const Prefs& prefs) {
    return {static_cast<double>(prefs.alertTempC.get()),
            static_cast<double>(prefs.alertFreeSpacePercent.get()),
            static_cast<double>(prefs.alertBatteryPercent.get()),
            static_cast<double>(prefs.alertSwapGB.get()) * 1e9};
}

std::string watchedText(const Snapshot& snapshot, const AttentionLimits& limits, const ReadingStyle& style) {
    std::string text =
        fmt::format("A note appears here when memory is short, when a volume has less than {} % free",
                    limits.freeSpacePercent);
    if (snapshot.mem.swapTotal > 0)
        text += fmt::format(", when more than {} GB of swap is in use", limits.swapBytes / 1e9);
    if (!snapshot.temps.empty())
        text += ", when a part is hotter than " + temperatureText(limits.celsius, style);
    if (snapshot.battery && snapshot.battery->present)
        text += fmt::format(", when the battery holds less than {} %", limits.batteryPercent);
    return text + " or when ended processes stay listed. The limits are in the settings.";
}

std::vector<AttentionItem> Attention::look(const Snapshot& snapshot, const Known& known,
                                           std::span<const Volume> volumes, const AttentionLimits& limits,
                                           const ReadingStyle& style, double now) {
    std::vector<AttentionItem> items;
    lookAtMemory(snapshot, known, limits, items);
    lookAtVolumes(volumes, limits, items);
    lookAtHeat(snapshot, limits, style, items);
    lookAtBattery(snapshot, limits, items);
    lookAtZombies(snapshot, now, items);
    std::stable_sort(items.begin(), items.end(),
                     [](const AttentionItem& a, const AttentionItem& b) { return a.level > b.level; });
    return items;
}

void Attention::lookAtZombies(const Snapshot& snapshot, double now, std::vector<AttentionItem>& items) {
    std::vector<Zombie> seen;
    size_t count = 0;
    const ProcInfo* last = nullptr;
    auto before = zombies_.begin();
    for (const ProcInfo& process : snapshot.processes) {
        if (process.state != "Zombie") continue;
        while (before != zombies_.end() && before->pid < process.pid) ++before;
        const bool known = before != zombies_.end() && before->pid == process.pid &&
                           before->start == process.startTimeMicros;
        seen.push_back({process.pid, process.startTimeMicros, known ? before->since : now});
        if (now - seen.back().since < uncollected) continue;
        ++count;
        last = &process;
    }
    zombies_ = std::move(seen);
    if (count == 0) return;
    if (count > 1) {
        items.push_back({AttentionLevel::note,
                         fmt::format("{} ended processes are still listed (zombies)", count),
                         "Their parents have not asked how they ended",
                         "processes",
                         {}});
        return;
    }
    const std::string name(last->name.view());
    const ProcInfo* parent = find(snapshot.processes, last->ppid);
    items.push_back(
        {AttentionLevel::note, name + " has ended but is still listed (zombie)",
         (parent ? std::string(parent->name.view()) : "Its parent") + " has not asked how it ended",
         "processes", name});
}

} // namespace quarn
