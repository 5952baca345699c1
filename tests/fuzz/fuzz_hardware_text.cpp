#include "Fuzz.h"
#include "core/Battery.h"
#include "core/CleanText.h"
#include "core/linux/GpuDevices.h"
#include "core/linux/GpuNames.h"
#include "core/linux/HardwareCpuInfo.h"
#include "core/linux/HardwareIdentity.h"
#include "core/linux/HardwareTopology.h"
#include "core/linux/PowerSupply.h"

/// The texts that describe a machine: its battery, processor, firmware and GPUs.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace sysinfo;
    const std::string_view text = textOf(data, size);

    const std::vector<PowerSupply> supplies(2,
                                            platform::describePowerSupply("BAT0", [&](std::string_view key) {
                                                return std::string(platform::ueventValue(text, key));
                                            }));
    const BatteryInfo battery = deriveBattery(supplies);
    require(battery.percent >= 0 && battery.percent <= 100);
    require(battery.timeToEmptyMin >= -1 && battery.timeToFullMin >= -1 && battery.cycleCount >= -1);
    require(battery.designCapacity >= -1 && battery.nominalCapacity >= -1);

    const std::string clean = scutil::cleanText(text);
    require(scutil::cleanText(clean) == clean);
    platform::processorName(platform::parseCpuInfo(text));
    platform::clockOfName(text);
    platform::modelOfDmi({std::string(text), platform::dmiText(text), clean, clean, clean, clean});
    platform::osReleaseValue(text, "NAME");
    platform::parseCacheSize(text);
    require(platform::parseCpuList(text).size() <= 8192);
    platform::parseGpuUevent(text);
    platform::nameInPciIds(text, 0x1002, 0x744c);
    platform::nameInAmdgpuIds(text, 0x744c, 0xc8);
    return 0;
}
