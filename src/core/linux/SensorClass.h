#pragma once

#include <cstdint>
#include <string_view>

namespace sysinfo::platform {

/// What a sensor measures.
enum class SensorKind : uint8_t { temperature, fan, voltage, current, power };

/// The first character of the keys of a kind.
char keyLetter(SensorKind kind);

/// Which part of the machine a sensor belongs to: the second character of its key.
enum class SensorClass : char {
    board = 'm', ///< also the class of what is not known better
    cpu = 'C',
    gpu = 'G',
    memory = 'M',
    powerSupply = 'P', ///< converters, chipset
    disk = 'H',
    nvme = 'N',
    battery = 'B',
    network = 'W',
    ambient = 'A',
};

/// The class of a chip: by the name of its driver, by where its device sits, by the PCI class of its device
/// (0 when it has none).
SensorClass classOfChip(std::string_view name, std::string_view devicePath, uint32_t pciClass);

/// The class of one sensor of a chip. Boards and laptops carry sensors of many parts, told by their labels.
SensorClass classOfSensor(SensorClass chip, std::string_view label);

/// Whether a power sensor shows what the whole machine draws, and whether what comes in from outside.
bool measuresSystemPower(std::string_view chipName, std::string_view label);
bool measuresInputPower(std::string_view chipName, std::string_view label);

/// An attribute of a hwmon folder, such as temp1_input: kind, number and what it says of the sensor.
struct HwmonAttribute {
    enum class Item : uint8_t { input, average, label, max, crit, fault, enable, other };
    SensorKind kind = SensorKind::temperature;
    int number = -1;
    Item item = Item::other;
};
/// Pure; `number` is −1 for a name that is no sensor's attribute.
HwmonAttribute parseHwmonAttribute(std::string_view fileName);

} // namespace sysinfo::platform
