#include "ui/modules/SensorSections.h"

#include "core/SMCProtocol.h"
#include "support/Joined.h"

namespace quarn {
namespace {

using sysinfo::SensorDescription;
using sysinfo::SensorState;

SensorDescription sensor(const char* key, SensorState state = SensorState::answering) {
    SensorDescription description;
    description.key = sysinfo::smcCode(key);
    description.label = "Core 0";
    description.chip = "chip";
    description.max = 84;
    description.state = state;
    return description;
}

TEST(SensorSections, GroupByPartThenByKind) {
    const std::vector<SensorDescription> sensors{sensor("F0Ac"), sensor("TC00", SensorState::asleep),
                                                 sensor("TC01"), sensor("TXXX"), sensor("TC02")};
    const SensorReadings readings{{"F0Ac", 900}, {"TC01", 50}, {"TXXX", 40}, {"VP0R", 12}, {"#KEY", 3}};
    const auto sections = sensorSections(sensors, readings);
    std::string text;
    for (const auto& section : sections)
        text += std::string(section.title) + ": " +
                testing::joinedEach(section.rows, &SensorRow::name, &SensorRow::value, &SensorRow::reason) +
                '\n';
    EXPECT_EQ(text, "CPU: CPU core 0 (chip)|-|asleep, and not woken for a reading CPU core 0 (chip)|50| \n"
                    "Other temperatures: CPU core 0 (chip)|40| \n"
                    "Fans: CPU core 0 (chip)|900| \n"
                    "Voltages: 12 V rail|12| \n")
        << "an answer that is not plausible is no row, and neither is a key of no kind; the "
           "voltage is a reading that nothing describes";
    EXPECT_TRUE(sensorSections({}, {}).empty());
}

TEST(SensorSections, FiguresHaveTheUnitOfTheirKind) {
    EXPECT_EQ(sensorFigure(54.04, sensorKind('T')), "54.0 °C");
    EXPECT_EQ(sensorFigure(100.0, sensorKind('T'), {.fahrenheit = true}), "212.0 °F");
    EXPECT_EQ(sensorFigure(12.0, sensorKind('V'), {.fahrenheit = true}), "12.000 V");
    EXPECT_EQ(sensorFigure({}, sensorKind('F')), "—");
}

} // namespace
} // namespace quarn
