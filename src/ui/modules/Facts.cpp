#include "ui/modules/Facts.h"

#include "ui/modules/Format.h"
#include "ui/modules/HardwareText.h"

#include <cmath>
#include <fmt/format.h>

namespace quarn {

namespace {

std::string sizeOrNothing(uint64_t bytes) { return bytes > 0 ? format::memory(bytes) : std::string(); }

std::string countOrNothing(int64_t count) { return count > 0 ? fmt::format("{}", count) : std::string(); }

std::string virtualText(const Hardware& hardware) {
    if (hardware.vmPresent) return "this is a virtual machine";
    return hardware.hvSupport ? "supported" : "not supported, or switched off";
}

std::string minutesText(int64_t minutes) {
    return minutes < 0 ? std::string() : format::duration(60.0 * static_cast<double>(minutes));
}

/// "12 345": digits in threes.
std::string grouped(uint64_t count) {
    std::string text = std::to_string(count);
    for (size_t end = text.size(); end > 3;) text.insert(end -= 3, " ");
    return text;
}

std::string linkSpeedText(int64_t megabits) {
    if (megabits <= 0) return {};
    if (megabits < 1000) return fmt::format("{} Mb/s", megabits);
    return format::threeDigits(static_cast<double>(megabits) / 1000) + " Gb/s";
}

std::string linkKind(const NetInterface& link) {
    std::string text = link.loopback ? "loopback" : link.pointToPoint ? "point to point" : "shared";
    if (link.multicast) text += ", multicast";
    return text;
}

/// "1290 mA, flowing out", "800 mA, flowing in".
std::string currentText(int64_t milliamperes) {
    if (milliamperes == 0) return "none";
    return fmt::format("{} mA, flowing {}", std::abs(milliamperes), milliamperes < 0 ? "out" : "in");
}

FactGroup addressFacts(const NetInterface& link) {
    FactGroup group{"Addresses", {}};
    const std::string_view all = link.addrs;
    for (size_t at = 0; at < all.size();) {
        const size_t end = std::min(all.find(", ", at), all.size());
        const std::string address(all.substr(at, end - at));
        group.facts.push_back({address.find(':') == std::string::npos ? "IPv4" : "IPv6", address, ""});
        at = end + 2;
    }
    if (group.facts.empty()) group.facts.push_back({"Address", "", "the interface has none"});
    group.facts.push_back({"Netmask", link.netmask, "only IPv4 addresses have one"});
    group.facts.push_back({"Broadcast", link.broadcast, "only IPv4 addresses have one"});
    return group;
}

} // namespace

std::vector<FactGroup> hardwareFacts(const Hardware& hardware) {
    std::vector<FactGroup> groups;
    const auto group = [&](const char* title) { groups.push_back({title, {}}); };
    const auto add = [&](const char* name, std::string value, const char* reason = "") {
        groups.back().facts.push_back({name, std::move(value), reason});
    };
    group("Machine");
    add("Model", hardware.model, "the firmware does not tell");
    add("Name", hardware.hostname);
    add("Memory", sizeOrNothing(hardware.memTotal));
    add("Battery", hardware.hasBattery ? "yes" : "none");
    group("Processor");
    add("Name", hardware.cpuBrand);
    add("Architecture", hardware.arch);
    add("Cores", coresText(hardware));
    add("Base clock", clockText(hardware.baseClockHz));
    add("L1 instructions", sizeOrNothing(hardware.l1iCache));
    add("L1 data", sizeOrNothing(hardware.l1dCache));
    add("L2", sizeOrNothing(hardware.l2Cache));
    if (hardware.l2CacheE > 0) add("L2 of efficiency cores", sizeOrNothing(hardware.l2CacheE));
    add("L3 in all", sizeOrNothing(hardware.l3Cache));
    add("Virtualisation", virtualText(hardware));
    group("Graphics");
    add("Name", hardware.gpuName, "no GPU was found");
    if (hardware.gpuCores > 0) add("Compute units", countOrNothing(hardware.gpuCores));
    if (!hardware.aneArch.empty()) add("Neural engine", hardware.aneArch);
    group("System");
    add("Version", hardware.osVersion);
    if (!hardware.osBuild.empty()) add("Build", hardware.osBuild);
    add("Kernel", hardware.kernel);
    add("Page size", sizeOrNothing(hardware.pageSize));
    return groups;
}

std::vector<FactGroup> interfaceFacts(const NetInterface& link, RatesKnown ratesKnown,
                                      const ReadingStyle& style) {
    const auto rate = [&](double value) {
        return ratesKnown == RatesKnown::yes ? networkRateText(value, style) : std::string();
    };
    const auto carried = [](uint64_t bytes, uint64_t packets) {
        return fmt::format("{} in {} packets", format::diskSize(bytes), grouped(packets));
    };
    constexpr auto later = "rates need two samples";
    return {
        {"Link",
         {{"State", link.up ? "up" : "down", ""},
          {"Kind", linkKind(link), ""},
          {"Media", link.media, "the driver does not tell"},
          {"Speed", linkSpeedText(link.linkSpeedMbps), "there is no link, or the driver does not tell"},
          {"MTU", link.mtu > 0 ? fmt::format("{} bytes", link.mtu) : "", ""},
          {"MAC", link.mac, "an interface of this kind has none"}}},
        addressFacts(link),
        {"Traffic since it came up",
         {{"Receiving", rate(link.rxRate), later},
          {"Sending", rate(link.txRate), later},
          {"Received", carried(link.rxBytes, link.rxPackets), ""},
          {"Sent", carried(link.txBytes, link.txPackets), ""},
          {"Errors", fmt::format("{} received, {} sent", grouped(link.rxErrors), grouped(link.txErrors)), ""},
          {"Dropped", grouped(link.drops), ""},
          {"Collisions", grouped(link.collisions), ""}}},
    };
}

std::vector<FactGroup> diskFacts(const SCDisk& disk, const Known& known) {
    const bool now = known.disk && known.rates;
    const auto when = [](bool isKnown, std::string text) {
        return isKnown ? std::move(text) : std::string();
    };
    const auto perSecond = [&](double rate) { return when(now, fmt::format("{:.0f} a second", rate)); };
    constexpr auto later = "rates need two samples";
    constexpr auto none = "no disk was found";
    const bool answered = now && disk.readOpsRate + disk.writeOpsRate > 0;
    return {
        {"Now",
         {{"Busy", when(now, format::percent(100 * disk.activeFraction)), later},
          {"Average response", when(answered, format::threeDigits(disk.avgResponseMs) + " ms"),
           "nothing was asked of the disks"},
          {"Reads", perSecond(disk.readOpsRate), later},
          {"Writes", perSecond(disk.writeOpsRate), later}}},
        {"Since the machine started",
         {{"Read", when(known.disk, format::diskSize(disk.readBytes)), none},
          {"Written", when(known.disk, format::diskSize(disk.writeBytes)), none},
          {"Capacity of all disks", when(disk.capacityBytes > 0, format::diskSize(disk.capacityBytes)),
           none}}},
    };
}

std::vector<FactGroup> powerFacts(const Snapshot& snapshot, const std::string& reason) {
    const SCPower& power = snapshot.power;
    const auto watts = [](double value) { return value > 0 ? format::watts(value) : std::string(); };
    FactGroup parts{"By part",
                    {{"Whole machine", watts(power.sysWatts), "no sensor of this machine measures it"},
                     {"Processors", watts(power.cpuWatts), reason},
                     {"GPU", watts(power.gpuWatts), reason},
                     {"Memory", watts(power.dramWatts), reason}}};
    const auto addIfKnown = [&](const char* name, double value) {
        if (value > 0) parts.facts.push_back({name, format::watts(value), ""});
    };
    addIfKnown("Neural engine", power.aneWatts);
    addIfKnown("Display", power.displayWatts);
    addIfKnown("Video encoder", power.encoderWatts);
    addIfKnown("Video decoder", power.decoderWatts);
    addIfKnown("Camera", power.ispWatts);
    if (snapshot.dcInWatts) addIfKnown("From the adapter", *snapshot.dcInWatts);
    std::string source = snapshot.powerSource;
    if (source == "IOReport") source = "energy counters";
    if (source == "SMC") source = "sensors of the whole machine";
    return {std::move(parts),
            {"Reading",
             {{"Source", source, "nothing here measures power"},
              {"Age",
               source.empty()        ? ""
               : snapshot.powerStale ? "older; no newer reading came"
                                     : "current",
               "nothing here measures power"}}}};
}

std::string batteryState(const Battery& battery) {
    const std::string left = minutesText(battery.charging ? battery.timeToFullMin : battery.timeToEmptyMin);
    if (battery.charging) return "charging" + (left.empty() ? left : ", " + left + " until full");
    if (battery.onAC) return "on mains, not charging";
    return "discharging" + (left.empty() ? left : ", " + left + " left");
}

std::string batteryCapacity(const Battery& battery) {
    if (battery.nominalCapacity < 1) return {};
    if (battery.designCapacity < 1) return fmt::format("{} mAh", battery.nominalCapacity);
    return fmt::format("{} of {} mAh ({:.0f} %)", battery.nominalCapacity, battery.designCapacity,
                       100.0 * static_cast<double>(battery.nominalCapacity) /
                           static_cast<double>(battery.designCapacity));
}

std::vector<FactGroup> batteryFacts(const Battery& battery, const ReadingStyle& style) {
    const bool voltage = battery.voltage_mV > 0;
    const bool current = voltage || battery.amperage_mA != 0;
    const double watts =
        std::abs(static_cast<double>(battery.voltage_mV) * static_cast<double>(battery.amperage_mA)) / 1e6;
    const double degrees = battery.temperatureC;
    return {
        {"Charge",
         {{"Charge", battery.percent >= 0 ? fmt::format("{} %", battery.percent) : "", ""},
          {"State", batteryState(battery), ""},
          {"Power", voltage && battery.amperage_mA != 0 ? format::watts(watts) : "", ""},
          {"Voltage", voltage ? fmt::format("{:.2f} V", static_cast<double>(battery.voltage_mV) / 1000) : "",
           ""},
          {"Current", current ? currentText(battery.amperage_mA) : "", ""}}},
        {"Condition",
         {{"Capacity when full", batteryCapacity(battery), "the battery does not tell"},
          {"Cycles", countOrNothing(battery.cycleCount), "the battery does not count them"},
          {"Temperature", degrees != 0 ? temperatureText(degrees, style) : "", "the battery does not tell"},
          {"Condition", battery.health, "the battery does not tell"}}},
    };
}

std::vector<std::string> plainLines(const std::vector<FactGroup>& groups) {
    std::vector<std::string> lines;
    for (const FactGroup& group : groups) {
        if (!lines.empty()) lines.emplace_back();
        lines.push_back(group.title);
        for (const Fact& fact : group.facts)
            lines.push_back(fmt::format("  {}: {}", fact.name,
                                        fact.value.empty() ? std::string(format::unknown) : fact.value));
    }
    return lines;
}

} // namespace quarn
