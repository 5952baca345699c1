#include "ui/modules/PageSentences.h"

#include "monitor/SensorGroups.h"
#include "ui/modules/Facts.h"
#include "ui/modules/Format.h"

#include <algorithm>
#include <fmt/format.h>

namespace quarn {

namespace {

constexpr double quiet = 1000; ///< bytes a second that are not worth a word

std::string lowerFirst(std::string text) {
    // "GPU" and "NVMe disks" stay as they are.
    if (text.size() > 1 && text[0] >= 'A' && text[0] <= 'Z' && text[1] >= 'a' && text[1] <= 'z')
        text[0] = static_cast<char>(text[0] - 'A' + 'a');
    return text;
}

std::string counted(size_t count, std::string_view one, std::string_view many) {
    return count == 1 ? fmt::format("one {}", one) : fmt::format("{} {}", count, many);
}

} // namespace

std::string networkSentence(const Snapshot& snapshot, const Known& known, const ReadingStyle& style) {
    if (snapshot.interfaces.empty()) return "No network interface but the loopback was found";
    if (!known.network) return "The traffic of this machine is not known";
    if (!known.rates) return "Rates follow with the next sample";
    const auto& links = snapshot.interfaces;
    const auto up = static_cast<size_t>(
        std::count_if(links.begin(), links.end(), [](const NetInterface& link) { return link.up; }));
    const double total = snapshot.net.rxRate + snapshot.net.txRate;
    if (total < quiet)
        return up == 0 ? "No interface is up"
                       : fmt::format("Hardly any traffic; {} of {} up", up,
                                     counted(links.size(), "interface is", "interfaces are"));
    std::string sentence =
        fmt::format("Receiving {} and sending {}", networkRateText(snapshot.net.rxRate, style),
                    networkRateText(snapshot.net.txRate, style));
    const auto busiest = std::max_element(links.begin(), links.end(), [](const auto& a, const auto& b) {
        return a.rxRate + a.txRate < b.rxRate + b.txRate;
    });
    if (up > 1 && busiest->rxRate + busiest->txRate > total / 2)
        sentence += ", most of it on " + busiest->name;
    return sentence;
}

std::string diskSentence(const Snapshot& snapshot, const Known& known) {
    const auto& disk = snapshot.disk;
    if (snapshot.disks.empty() && disk.diskCount == 0) return "No physical disks were found";
    if (!known.disk || !known.rates) return "Rates follow with the next sample";
    if (disk.readRate + disk.writeRate < quiet) return "Hardly anything is read or written";
    return fmt::format("Reading {} and writing {}; disks are busy {:.0f} % of the time",
                       format::rate(disk.readRate), format::rate(disk.writeRate),
                       100 * std::clamp(disk.activeFraction, 0.0, 1.0));
}

std::string sensorSentence(const Snapshot& snapshot, const ReadingStyle& style) {
    const auto naming = snapshot.isAppleSilicon ? SensorNaming::appleSilicon : SensorNaming::intel;
    std::string sentence;
    const auto maxima = SensorGroups::maxima({snapshot.temps.data(), snapshot.temps.size()}, naming);
    const auto hottest = std::max_element(maxima.begin(), maxima.end(),
                                          [](const auto& a, const auto& b) { return a.celsius < b.celsius; });
    if (hottest != maxima.end()) {
        const auto slots = SensorGroups::slotNames(naming);
        const auto slot = std::find_if(slots.begin(), slots.end(),
                                       [&](const auto& one) { return one.prefix == hottest->prefix; });
        sentence = fmt::format("The hottest part: {}, at {}", lowerFirst(std::string(slot->name)),
                               temperatureText(hottest->celsius, style));
    }
    size_t turning = 0;
    double fastest = 0;
    for (const Sensor& fan : snapshot.fanKeys) {
        turning += fan.value > 0;
        fastest = std::max(fastest, fan.value);
    }
    if (!snapshot.fanKeys.empty()) {
        if (!sentence.empty()) sentence += "; ";
        if (turning == 0)
            sentence += "the fans stand still";
        else
            sentence += fmt::format("{} at {}{:.0f} rpm", counted(turning, "fan turns", "fans turn"),
                                    turning > 1 ? "up to " : "", fastest);
    }
    if (sentence.empty()) return "No sensor has given a value";
    sentence[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence[0])));
    return sentence;
}

std::string powerSentence(const Snapshot& snapshot) {
    std::string sentence = snapshot.power.sysWatts > 0
                               ? "The machine draws " + format::watts(snapshot.power.sysWatts)
                               : "The power that the machine draws is not known";
    if (const auto& battery = snapshot.battery; battery && battery->present) {
        sentence += "; the battery ";
        if (battery->percent >= 0)
            sentence += fmt::format("holds {} %, ", battery->percent);
        else
            sentence += "is ";
        sentence += batteryState(*battery);
    }
    return sentence;
}

std::string machineSentence(const Hardware& hardware, const Snapshot& snapshot, const Known& known) {
    std::vector<std::string> parts;
    const int64_t cores = hardware.physCpu > 0 ? hardware.physCpu : hardware.ncpu;
    if (cores > 0) parts.push_back(cores == 1 ? "one core" : fmt::format("{} cores", cores));
    if (hardware.memTotal > 0) parts.push_back(format::memory(hardware.memTotal) + " of memory");
    std::string sentence = hardware.model.empty() ? "This machine" : hardware.model;
    if (!parts.empty()) sentence += fmt::format(": {}", fmt::join(parts, " and "));
    if (known.uptime) sentence += ", running for " + format::duration(snapshot.uptime);
    return sentence;
}

std::string powerReason(sysinfo::EnergyAccess access, const Snapshot& snapshot) {
    const SCPower& power = snapshot.power;
    if (power.cpuWatts + power.gpuWatts + power.dramWatts + power.aneWatts > 0) return {};
    switch (access) {
    case sysinfo::EnergyAccess::denied: return "energy counters are readable by root only";
    case sysinfo::EnergyAccess::none: return "this machine has no energy counters that are known here";
    case sysinfo::EnergyAccess::open: break;
    }
    return "a reading takes some seconds";
}

} // namespace quarn
