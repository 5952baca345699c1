// `quarn power`, `battery`, `gpu` and `hardware` on captured machines.
#include "cli/Program.h"
#include "support/Contains.h"
#include "support/TempRoot.h"

#include <nlohmann/json.hpp>

namespace quarn::testing {
namespace {

using nlohmann::json;

std::string on(const std::string& root, std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--root", root});
    return outputOf(arguments);
}

std::string captured(const std::string& machine) { return QUARN_FIXTURES "/" + machine; }

TEST(HardwareCommands, Battery) {
    const auto battery = json::parse(on(captured("battery/thinkpad-81"), {"battery", "--json"}));
    EXPECT_EQ(battery["percent"], 81);
    EXPECT_EQ(battery["cycleCount"], nullptr) << "0 is not counted, so unknown";
    EXPECT_EQ(battery["amperage_mA"], -429);
    EXPECT_EQ(json::parse(on(captured("battery/not-charging"), {"battery", "--json"}))["percent"], nullptr);
    EXPECT_EQ(json::parse(on(captured("battery/trackpad"), {"battery", "--json"})), nullptr);
    EXPECT_EQ(on(captured("battery/trackpad"), {"battery"}), "This machine has no battery.\n");
}

TEST(HardwareCommands, Gpu) {
    const auto gpus = json::parse(on(captured("gpu/vega-and-intel"), {"gpu", "--json", "--interval", "0"}));
    ASSERT_EQ(gpus.size(), 2u);
    EXPECT_EQ(gpus[0]["busy"], 4);
    EXPECT_EQ(gpus[1]["busy"], nullptr);
    EXPECT_EQ(on(captured("battery/trackpad"), {"gpu"}), "No GPU was found.\n");

    TempRoot machine;
    machine.copyFixture("gpu/rx580").write("sys/class/drm/card0/device/power/runtime_status", "suspended\n");
    const auto text = on(machine.path().string(), {"gpu", "--interval", "0"});
    EXPECT_TRUE(contains(text, "Memory       —  (asleep)"));
}

TEST(HardwareCommands, PowerSaysWhyThereIsNone) {
    TempRoot machine;
    const std::string zone = "sys/class/powercap/intel-rapl:0/";
    machine.write(zone + "name", "package-0\n").folder(zone + "energy_uj"); // cannot be read
    const auto text = on(machine.path().string(), {"power", "--interval", "0"});
    EXPECT_TRUE(contains(text, "Processors     —"));
    EXPECT_TRUE(contains(text, "Energy counters are readable by root only; run as root"));
    const auto none = json::parse(on(captured("battery/trackpad"), {"power", "--json", "--interval", "0"}));
    EXPECT_EQ(none["power"]["cpuWatts"], nullptr);
    EXPECT_EQ(none["reason"], "This machine has no energy counters that are known here.");
}

TEST(HardwareCommands, Hardware) {
    TempRoot machine;
    machine.unpack("hardware/hybrid-20.tree");
    const auto hardware = json::parse(on(machine.path().string(), {"hardware", "--json"}));
    EXPECT_EQ(hardware["perfCores"], 6);
    EXPECT_EQ(hardware["gpuName"], nullptr);
    const auto text = on(machine.path().string(), {"hardware"});
    EXPECT_TRUE(contains(text, "14 (6 performance, 8 efficiency), 20 threads"));
    EXPECT_TRUE(contains(text, "—  (no GPU was found)"));
}

} // namespace
} // namespace quarn::testing
