#include "ui/modules/Facts.h"

namespace {

using namespace quarn;

/// The value of a fact wherever it stands; "?" when it is not listed.
std::string valueOf(const std::vector<FactGroup>& groups, std::string_view name) {
    for (const FactGroup& group : groups)
        for (const Fact& fact : group.facts)
            if (fact.name == name) return fact.value;
    return "?";
}

NetInterface ethernet() {
    NetInterface link;
    link.name = "eth0";
    link.addrs = "192.0.2.17, 192.0.2.18, fd00::17";
    link.up = true;
    link.rxBytes = 1'234'000;
    link.rxPackets = 1'234'567;
    link.linkSpeedMbps = 2500;
    link.mtu = 1500;
    link.rxRate = 1e6;
    return link;
}

TEST(Facts, AnInterfaceListsEachAddressAndWhatItCarried) {
    const auto facts = interfaceFacts(ethernet(), RatesKnown::yes, {});
    std::vector<std::pair<std::string, std::string>> addresses;
    for (const Fact& fact : facts.at(1).facts)
        if (fact.name.starts_with("IPv")) addresses.emplace_back(fact.name, fact.value);
    EXPECT_EQ(addresses,
              (decltype(addresses){{"IPv4", "192.0.2.17"}, {"IPv4", "192.0.2.18"}, {"IPv6", "fd00::17"}}));
    EXPECT_EQ(valueOf(facts, "Received"), "1.23 MB in 1 234 567 packets");
    EXPECT_EQ(valueOf(facts, "Speed"), "2.50 Gb/s");
    EXPECT_EQ(valueOf(facts, "Netmask"), "") << "not known";
    EXPECT_EQ(valueOf(facts, "Receiving"), "1.00 MB/s");
    EXPECT_EQ(valueOf(interfaceFacts(ethernet(), RatesKnown::yes, {.networkInBits = true}), "Receiving"),
              "8.00 Mb/s");
    EXPECT_EQ(valueOf(interfaceFacts(ethernet(), RatesKnown::no, {}), "Receiving"), "") << "no 0 B/s";
    EXPECT_EQ(valueOf(interfaceFacts({}, RatesKnown::yes, {}), "Address"), "");
}

TEST(Facts, ABatteryTellsWhatItKnows) {
    Battery battery;
    battery.present = true;
    battery.percent = 74;
    battery.timeToEmptyMin = 312;
    battery.timeToFullMin = 20;
    battery.designCapacity = 4400;
    battery.nominalCapacity = 4031;
    battery.voltage_mV = 11620;
    battery.amperage_mA = -1290;
    battery.temperatureC = 31;
    const auto facts = batteryFacts(battery, {.fahrenheit = true});
    EXPECT_EQ(valueOf(facts, "State"), "discharging, 5 h 12 min left");
    EXPECT_EQ(valueOf(facts, "Power"), "15.0 W") << "whichever way it flows";
    EXPECT_EQ(valueOf(facts, "Current"), "1290 mA, flowing out");
    EXPECT_EQ(valueOf(facts, "Capacity when full"), "4031 of 4400 mAh (92 %)");
    EXPECT_EQ(valueOf(facts, "Temperature"), "88 °F");
    battery.charging = battery.onAC = true;
    EXPECT_EQ(batteryState(battery), "charging, 20 min 0 s until full");
    battery.charging = false;
    EXPECT_EQ(batteryState(battery), "on mains, not charging");
    for (const auto& group : batteryFacts({}, {}))
        for (const Fact& fact : group.facts)
            EXPECT_TRUE(fact.value.empty() || fact.name == "State" || fact.name == "Charge") << fact.name;
}

TEST(Facts, PowerSaysWhereItIsKnownFrom) {
    Snapshot snapshot;
    EXPECT_EQ(valueOf(powerFacts(snapshot, "why"), "Whole machine"), "");
    EXPECT_EQ(valueOf(powerFacts(snapshot, "why"), "Age"), "");
    snapshot.power.sysWatts = 12.4;
    snapshot.powerSource = "SMC";
    snapshot.powerStale = true;
    const auto facts = powerFacts(snapshot, "why");
    EXPECT_EQ(valueOf(facts, "Whole machine"), "12.4 W");
    EXPECT_EQ(facts.front().facts.at(1), (Fact{"Processors", "", "why"}));
    EXPECT_EQ(valueOf(facts, "Neural engine"), "?") << "only where there is one";
    EXPECT_EQ(valueOf(facts, "Age"), "older; no newer reading came");
}

TEST(Facts, IdleDisksHaveNoResponseTime) {
    SCDisk disk{};
    EXPECT_EQ(valueOf(diskFacts(disk, {}), "Average response"), "");
    disk.readOpsRate = 3;
    disk.avgResponseMs = 1.5;
    disk.activeFraction = 0.07;
    EXPECT_EQ(valueOf(diskFacts(disk, {}), "Average response"), "1.50 ms");
    EXPECT_EQ(valueOf(diskFacts(disk, {}), "Busy"), "7.0 %");
    EXPECT_EQ(valueOf(diskFacts(disk, {.rates = false}), "Busy"), "");
}

TEST(Facts, AreCopiedAsText) {
    EXPECT_EQ(plainLines({{"A", {{"x", "1", ""}, {"y", "", "why"}}}, {"B", {}}}),
              (std::vector<std::string>{"A", "  x: 1", "  y: —", "", "B"}));
}

} // namespace
