#include "core/NeuralEngine.h"

#include "core/linux/Files.h"
#include "core/linux/GpuDevices.h"

#include <array>
#include <string_view>

namespace sysinfo::platform {

namespace {

struct Row {
    std::string_view driver, name;
};

constexpr std::array names{
    Row{"amdxdna", "AMD XDNA"},       Row{"habanalabs", "Intel Gaudi"}, Row{"intel_vpu", "Intel NPU"},
    Row{"qaic", "Qualcomm Cloud AI"}, Row{"rocket", "Rockchip NPU"},    Row{"ethosu", "Arm Ethos-U"},
};

} // namespace

std::optional<NeuralEngine> findNeuralEngine(const SystemRoot& root) {
    const std::string folder = "sys/class/accel/";
    for (const std::string& device : listFolder(root.path(folder))) {
        const auto uevent = readTable(root.path(folder + device + "/device/uevent"));
        if (!uevent) continue;
        const std::string driver = parseGpuUevent(*uevent).driver;
        for (const Row& row : names)
            if (row.driver == driver) return NeuralEngine{0, std::string(row.name)};
        return NeuralEngine{0, driver};
    }
    return {};
}

} // namespace sysinfo::platform
