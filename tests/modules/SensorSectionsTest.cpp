#include "ui/modules/SensorSections.h"

#include "core/SMCProtocol.h"

#include <gtest/gtest.h>

namespace {

using namespace quarn;
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
    std::vector<std::pair<std::string_view, size_t>> titles;
    for (const auto& section : sections) titles.emplace_back(section.title, section.rows.size());
    EXPECT_EQ(titles, (decltype(titles){{"CPU", 2}, {"Other temperatures", 1}, {"Fans", 1}, {"Voltages", 1}}))
        << "an answer that is not plausible is no row, and neither is a key of no kind";
    EXPECT_EQ(sections[0].rows[0].value, std::nullopt);
    EXPECT_EQ(sections[0].rows[0].reason, "asleep, and not woken for a reading");
    EXPECT_EQ(sections[0].rows[1].value, 50);
    EXPECT_EQ(sections[0].rows[1].name, "CPU core 0 (chip)");
    EXPECT_EQ(sections[3].rows[0].name, "12 V rail") << "a reading that nothing describes";
    EXPECT_TRUE(sensorSections({}, {}).empty());
}

TEST(SensorSections, FiguresHaveTheUnitOfTheirKind) {
    EXPECT_EQ(sensorFigure(54.04, sensorKind('T')), "54.0 °C");
    EXPECT_EQ(sensorFigure(100.0, sensorKind('T'), {.fahrenheit = true}), "212.0 °F");
    EXPECT_EQ(sensorFigure(12.0, sensorKind('V'), {.fahrenheit = true}), "12.000 V");
    EXPECT_EQ(sensorFigure({}, sensorKind('F')), "—");
}

} // namespace
