#include "monitor/HardwareConversion.h"

namespace {

using namespace quarn;

TEST(ModelFamily, FromTheIdentifier) {
    for (const auto& [model, family] : std::vector<std::pair<const char*, const char*>>{
             {"MacBookAir7,2", "MacBook Air"},
             {"Mac14,2", "MacBook Air"},
             {"MacBookPro18,3", "MacBook Pro"},
             {"Mac16,8", "MacBook Pro"},
             {"Macmini9,1", "Mac mini"},
             {"iMac21,1", "iMac"},
             {"Mac15,4", "iMac"},
             {"Mac13,2", "Mac Studio"},
             {"MacPro7,1", "Mac Pro"},
             {"Mac14,8", "Mac Pro"},
             {"MacBook10,1", "Mac"},
             {"Mac99,1", "Mac"},
             {"", "Mac"},
             {"Lenovo ThinkPad T480", "Lenovo ThinkPad T480"},
         })
        EXPECT_EQ(modelFamily(model), family) << model;
}

TEST(HardwareConversion, AbsentStaysAbsent) {
    EXPECT_FALSE(toBattery({}));
    const auto hardware = toHardware({}, {}, {});
    EXPECT_FALSE(hardware.hasBattery);
    EXPECT_FALSE(hardware.bootTime) << "1970 is no boot time";

    sysinfo::BatteryInfo info;
    info.present = true;
    const auto battery = toBattery(info);
    ASSERT_TRUE(battery);
    EXPECT_EQ(battery->percent, -1) << "nothing tells the charge";
    EXPECT_EQ(battery->timeToEmptyMin, -1);
    EXPECT_TRUE(toHardware({}, info, {}).hasBattery);
}

TEST(HardwareConversion, KeepsEveryField) {
    sysinfo::HardwareInfo info;
    info.gpuName = "GPU";
    info.perfCores = 6;
    info.effCores = 8;
    info.l2Cache = 1;
    info.l2CacheE = 2;
    info.l3Cache = 3;
    info.bootTime = 4;
    info.baseClockHz = 5;
    info.vmPresent = true;
    const auto hardware = toHardware(info, {}, sysinfo::NeuralEngine{16, "h15"});
    EXPECT_EQ(hardware.gpuName, "GPU");
    EXPECT_EQ(hardware.perfCores + hardware.effCores, 14);
    EXPECT_EQ(hardware.l2Cache, 1u);
    EXPECT_EQ(hardware.l2CacheE, 2u);
    EXPECT_EQ(hardware.l3Cache, 3u);
    EXPECT_EQ(hardware.bootTime, 4u);
    EXPECT_EQ(hardware.baseClockHz, 5u);
    EXPECT_TRUE(hardware.vmPresent);
    EXPECT_EQ(hardware.aneCores, 16);
    EXPECT_EQ(hardware.aneArch, "h15");
}

} // namespace
