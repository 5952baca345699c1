#include "ui/modules/WidgetKind.h"

#include "ui/settings/PrefTypes.h"

#include <cmath>
#include <limits>

namespace quarn {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Snapshot busyMachine() {
    Snapshot snapshot;
    snapshot.cpu.total = 7;
    snapshot.mem.total = 16'000;
    snapshot.mem.used = 9'960;
    snapshot.gpu.device = 41.6;
    snapshot.net.rxRate = 1'200'000;
    snapshot.net.txRate = 34'000;
    snapshot.disk.readRate = 11'000'000;
    snapshot.disk.writeRate = 1'340'000;
    snapshot.power.sysWatts = 12.44;
    return snapshot;
}

struct Change {
    std::string_view what;
    WidgetKind kind;
    void (*change)(Snapshot&, Reading&);
    std::string_view menuBarText;
    std::string_view shortText;
};

TEST(WidgetKind, MenuBarTextKeepsItsWidth) {
    using S = Snapshot;
    using R = Reading;
    const auto same = [](S&, R&) {};
    const std::vector<Change> cases{
        {"one digit", WidgetKind::cpu, same, "  7 %", "7"},
        {"the whole", WidgetKind::cpu, [](S& s, R&) { s.cpu.total = 100; }, "100 %", "100"},
        {"rounds", WidgetKind::cpu, [](S& s, R&) { s.cpu.total = 99.6; }, "100 %", "100"},
        {"before the second sample", WidgetKind::cpu, [](S&, R& r) { r.known.cpu = false; }, "    —", "—"},
        {"memory", WidgetKind::memory, same, " 62 %", "62"},
        {"no memory", WidgetKind::memory,
         [](S& s, R& r) {
             s.mem = {};
             r.known.memory = r.known.memoryParts = false;
         },
         "  0 %", "—"},
        {"use unknown", WidgetKind::memory, [](S&, R& r) { r.known.memoryParts = false; }, "    —", "—"},
        {"gpu", WidgetKind::gpu, same, " 42 %", "42"},
        {"no gpu", WidgetKind::gpu, [](S& s, R&) { s.gpu.device = -1; }, "    —", "—"},
        {"no sensor", WidgetKind::temperature, same, "    —", "—"},
        {"Celsius", WidgetKind::temperature, [](S&, R& r) { r.temperature = 54.4; }, "54 °C", "54°"},
        {"characters, not bytes", WidgetKind::temperature, [](S&, R& r) { r.temperature = 9; }, " 9 °C",
         "9°"},
        {"wider than its place", WidgetKind::temperature,
         [](S&, R& r) {
             r.temperature = 54.4;
             r.style.fahrenheit = true;
         },
         "130 °F", "130°"},
        {"network", WidgetKind::network, same, "1.20 MB/s 34.0 kB/s", "1M"},
        {"bits", WidgetKind::network, [](S&, R& r) { r.style.networkInBits = true; }, "9.60 Mb/s  272 kb/s",
         "10M"},
        {"idle network", WidgetKind::network, [](S& s, R&) { s.net.rxRate = s.net.txRate = 0; },
         "    0 B/s     0 B/s", "0"},
        {"first network sample", WidgetKind::network, [](S&, R& r) { r.known.rates = false; },
         "        —         —", "—"},
        {"disk", WidgetKind::disk, same, "12.3 MB/s", "12M"},
        {"idle disk", WidgetKind::disk, [](S& s, R&) { s.disk.readRate = s.disk.writeRate = 0; }, "  0.0 B/s",
         "0"},
        {"next unit", WidgetKind::disk,
         [](S& s, R&) {
             s.disk.readRate = 999.96;
             s.disk.writeRate = 0;
         },
         " 1.0 kB/s", "1k"},
        {"wide disk", WidgetKind::disk, [](S& s, R&) { s.disk.readRate = 600e6; }, "601.3 MB/s", ".6G"},
        {"no disk", WidgetKind::disk, [](S&, R& r) { r.known.disk = false; }, "        —", "—"},
        {"power", WidgetKind::power, same, "12.4 W", "12W"},
        {"little power", WidgetKind::power, [](S& s, R&) { s.power.sysWatts = 3.26; }, " 3.3 W", "3W"},
        {"no power", WidgetKind::power, [](S& s, R&) { s.power.sysWatts = 0; }, "     —", "—"},
        {"power unread", WidgetKind::power, [](S& s, R&) { s.power.sysWatts = nan; }, "     —", "—"},
    };
    for (const Change& c : cases) {
        Snapshot snapshot = busyMachine();
        Reading reading{snapshot};
        c.change(snapshot, reading);
        EXPECT_EQ(reading.menuBarText(c.kind), c.menuBarText) << c.what;
        EXPECT_EQ(reading.shortText(c.kind), c.shortText) << c.what;
    }
}

TEST(WidgetKind, UnknownIsADashInTextsAndNoNumberInGraphs) {
    Snapshot nothing;
    nothing.gpu.device = -1;
    Reading reading{nothing};
    reading.known = {.rates = false, .cpu = false, .memory = false, .memoryParts = false};
    for (const WidgetKind kind : allWidgetKinds) {
        EXPECT_EQ(reading.headline(kind), "—") << widgetKindId(kind);
        EXPECT_FALSE(reading.caption(kind).empty()) << widgetKindId(kind);
        EXPECT_TRUE(std::isnan(reading.value(kind))) << widgetKindId(kind);
    }
}

TEST(WidgetKind, TemperatureIsThatOfTheFirstPartThatHasSensors) {
    Snapshot snapshot;
    EXPECT_FALSE(representativeTemperature(snapshot));
    const auto with = [&](std::vector<Sensor> sensors) {
        snapshot.temps = std::move(sensors);
        const Reading reading{.snapshot = snapshot, .temperature = representativeTemperature(snapshot)};
        return reading.headline(WidgetKind::temperature) + ", " + reading.caption(WidgetKind::temperature);
    };
    EXPECT_EQ(with({{"TN0P", 71}, {"TC0P", 48}, {"TC1P", 52}}), "52 °C, CPU");
    EXPECT_EQ(with({{"TN0P", 71}}), "71 °C, NVMe disks");
    EXPECT_EQ(with({{"Tx0P", 33}, {"Ty0P", 44}}), "44 °C, hottest sensor");
}

TEST(WidgetKind, SettingsNameEveryKindAsTheyStoreIt) {
    ASSERT_EQ(allWidgetKinds.size(), moduleTexts.size());
    for (size_t i = 0; i < moduleTexts.size(); ++i)
        EXPECT_EQ(widgetKindFromId(moduleTexts[i]), allWidgetKinds[i]) << moduleTexts[i];
    EXPECT_FALSE(widgetKindFromId("CPU"));
}

} // namespace
} // namespace quarn
