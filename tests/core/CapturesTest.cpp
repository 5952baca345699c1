// Captured machines that the repository may not hold, and what each teaches. They are read when they lie
// below build/captures, or where QUARN_CAPTURES says.
#include "SensorSupport.h"
#include "core/Battery.h"
#include "core/GpuStats.h"
#include "core/IOReport.h"
#include "core/Storage.h"
#include "core/linux/GpuClients.h"
#include "core/linux/Powercap.h"
#include "support/TempRoot.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>

namespace {

using namespace sysinfo;
using namespace sysinfo::platform;
using nlohmann::json;
using quarn::testing::TempRoot;
namespace fs = std::filesystem;

std::optional<fs::path> outsideCapture(std::string_view relative) {
    const char* folder = std::getenv("QUARN_CAPTURES");
    const fs::path path =
        (folder ? fs::path(folder) : fs::path(QUARN_SOURCE_DIR) / "build/captures") / relative;
    return fs::exists(path) ? std::optional(path) : std::nullopt;
}

#define CAPTURE_OR_SKIP(name, relative)                                                                      \
    const auto name = outsideCapture(relative);                                                              \
    if (!name) GTEST_SKIP() << relative << " is not below build/captures"

/// Judges one captured machine by what another program's tests say of it right after its start.
void compare(const BatteryInfo& battery, const json& expected) {
    for (const json& item : expected) {
        const auto what = item.at("what").get<std::string>();
        const json& value = item.at("value");
        const auto asks = [&](const char* property) { return what.find(property) != std::string::npos; };
        if (asks("'OnBattery'")) {
            EXPECT_EQ(battery.present && !battery.onAC, value.get<bool>());
        }
        if (!asks("(bat0_up") && !asks("display_property")) continue; // of a mouse, a keyboard, a UPS
        if (asks("'IsPresent'")) {
            EXPECT_EQ(battery.present, value.get<bool>());
        }
        if (asks("'Percentage'")) {
            EXPECT_EQ(battery.percent, static_cast<int>(value.get<double>()));
        }
        if (asks("'Voltage'")) {
            EXPECT_EQ(battery.voltage_mV, static_cast<int>(value.get<double>() * 1000));
        }
        if (asks("'Temperature'")) {
            EXPECT_DOUBLE_EQ(battery.temperatureC, value.get<double>());
        }
        // That a battery of unknown state at 99 % must be full is their guess, not ours.
        if (asks("'State'") && value == "UP_DEVICE_STATE_DISCHARGING") {
            EXPECT_FALSE(battery.onAC);
        }
    }
}

TEST(Captures, BatteriesAgreeWithPublishedExpectations) {
    CAPTURE_OR_SKIP(folder, "upower");
    int compared = 0;
    for (const auto& machine : fs::directory_iterator(*folder)) {
        std::ifstream file(machine.path() / "expected.json");
        if (!file) continue;
        SCOPED_TRACE(machine.path().filename().string());
        compare(readBattery(SystemRoot(machine.path().string())),
                json::parse(file).at("expected_after_start"));
        ++compared;
    }
    EXPECT_GT(compared, 30);
}

TEST(Captures, DrivesOfAListingWithLoopsAndMapper) {
    CAPTURE_OR_SKIP(machine, "ul/lsblk/simple-lvm");
    SCDiskDevice devices[8];
    ASSERT_EQ(diskDevices(SystemRoot(machine->string()), devices, 8), 3);
    EXPECT_STREQ(devices[0].name, "KINGSTON SH103S3");
    EXPECT_STREQ(devices[1].name, "WDC WD800JD-00MS");
    EXPECT_STREQ(devices[1].medium, "HDD");
    EXPECT_STREQ(devices[2].name, "KINGSTON SKC1000240G");
    EXPECT_STREQ(devices[2].architecture, "NVMe");
    EXPECT_NEAR(static_cast<double>(devices[0].size) / (1 << 30), 223.6, 0.05);
}

TEST(Captures, AGpuClientAsTheKernelsManualShowsIt) {
    CAPTURE_OR_SKIP(file, "kernel-doc-fdinfo/panfrost.fdinfo");
    TempRoot machine;
    machine.folder("proc/7/fdinfo").link("proc/7/fd/3", "/dev/dri/renderD128");
    fs::copy(*file, machine.path() / "proc/7/fdinfo/3");
    DrmDescriptors descriptors(machine.root());
    descriptors.update();
    const auto usages = descriptors.read();
    ASSERT_EQ(usages.size(), 1u);
    EXPECT_EQ(usages[0].clientId, 14u);
    EXPECT_EQ(usages[0].engines.size(), 2u);
    EXPECT_EQ(usages[0].residentBytes, 36496u * 1024);
}

TEST(Captures, PowercapInNestedFoldersAndFilesPaddedWithNuls) {
    CAPTURE_OR_SKIP(laptop, "pcp/denki/Thinkpad_L480_bat_busy");
    CAPTURE_OR_SKIP(server, "pcp-xeon40");
    Powercap powercap{SystemRoot(laptop->string())};
    EnergySample channels;
    powercap.sample(1'000'000'000, channels);
    std::vector<std::string> names;
    for (const auto& channel : channels) names.push_back(channel.name);
    EXPECT_EQ(names, (std::vector<std::string>{"GPU", "CPU Energy", "DRAM"})) << "psys gives none";
    EXPECT_EQ(listPowercapZones(SystemRoot(server->string())).size(), 2u);
}

TEST(Captures, SensorsOfAServerOfFortyCores) {
    CAPTURE_OR_SKIP(server, "pcp-xeon40");
    quarn::testing::SensorMachine machine(SystemRoot(server->string()));
    const auto byName = machine.named(machine.temperatures());
    EXPECT_EQ(byName.size(), 22u);
    EXPECT_TRUE(byName.contains("Package id 1 (coretemp.1)"));
    EXPECT_EQ(machine.smc.keys().size(), 22u);
}

TEST(Captures, VolumesOfAMessyTable) {
    CAPTURE_OR_SKIP(table, "ul/mountinfo-findmnt/mountinfo");
    TempRoot root;
    root.link("proc/self/mountinfo", table->string());
    std::string seen;
    for (const auto& volume : readVolumes(root.root())) seen += volume.mount + (volume.local ? " " : "* ");
    EXPECT_EQ(seen, "/ /boot /home/kzak /mnt/sounds* ");
}

} // namespace
