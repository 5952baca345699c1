#include "monitor/HardwareConversion.h"

namespace {

using namespace quarn;

TEST(ModelFamily, FromTheIdentifier) {
    const std::pair<const char*, const char*> cases[]{{"MacBookAir7,2", "MacBook Air"}, // by its beginning
                                                      {"Mac16,8", "MacBook Pro"},       // by its number
                                                      {"Macmini9,1", "Mac mini"},
                                                      {"Mac15,4", "iMac"},
                                                      {"MacBook10,1", "Mac"},
                                                      {"", "Mac"},
                                                      {"Lenovo ThinkPad T480", "Lenovo ThinkPad T480"}};
    for (const auto& [model, family] : cases) EXPECT_EQ(modelFamily(model), family) << model;
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

} // namespace
