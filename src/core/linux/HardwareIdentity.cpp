#include "core/linux/HardwareIdentity.h"

#include "core/CleanText.h"
#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/linux/HardwareCpuInfo.h"
#include "core/platform.h"

#include <algorithm>
#include <array>
#include <sys/utsname.h>

namespace sysinfo::platform {

namespace {

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return result;
}

/// Beginnings, in small letters, of what stands in a field that nobody filled.
constexpr std::array<std::string_view, 18> placeholders{"to be filled",    "system product",
                                                        "system manufact", "system version",
                                                        "default string",  "not specified",
                                                        "not applicable",  "not available",
                                                        "undefined",       "invalid",
                                                        "unknown",         "none",
                                                        "o.e.m",           "oem",
                                                        "empty",           "n/a",
                                                        "0123456789",      "xxxxx"};

constexpr std::array<std::string_view, 13> companyForms{
    ", inc.", " inc.",        " inc",   " co., ltd.", " co.,ltd.", ",ltd.",         " ltd.",
    " ltd",   " corporation", " corp.", " corp",      " gmbh",     " international"};

/// The name that people know a maker by: without its legal form.
std::string makerName(std::string_view vendor) {
    std::string name(vendor);
    for (bool shortened = true; shortened;) {
        shortened = false;
        for (const auto form : companyForms)
            if (name.size() > form.size() && lowered(name).ends_with(form)) {
                name.resize(name.size() - form.size());
                shortened = true;
            }
    }
    return std::string(scutil::trimmed(name));
}

std::string withMaker(std::string_view vendor, std::string_view product) {
    const std::string maker = makerName(vendor);
    std::string_view words = maker;
    const std::string firstWord = lowered(scutil::takeWord(words));
    if (maker.empty() || lowered(product).starts_with(firstWord)) return std::string(product);
    return maker + ' ' + std::string(product);
}

DmiTexts readDmi(const SystemRoot& root) {
    const auto text = [&](std::string_view field) {
        for (const std::string_view folder : {"sys/class/dmi/id/", "sys/devices/virtual/dmi/id/"})
            if (const auto raw = readAttribute(root.path(std::string(folder) + std::string(field))))
                return dmiText(*raw);
        return std::string();
    };
    return {text("sys_vendor"),     text("product_name"), text("product_version"),
            text("product_family"), text("board_vendor"), text("board_name")};
}

std::string deviceTree(const SystemRoot& root, std::string_view property) {
    for (const std::string_view folder : {"proc/device-tree/", "sys/firmware/devicetree/base/"})
        if (auto value = readAttribute(root.path(std::string(folder) + std::string(property)))) return *value;
    return {};
}

/// The kernel's release; a capture may have kept only the line that proc/version is.
std::string kernelRelease(const SystemRoot& root) {
    if (auto release = sysctlString(root, "kernel.osrelease"); !release.empty()) return release;
    const std::string version = readAttribute(root.path("proc/version")).value_or("");
    std::string_view rest = version;
    for (const std::string_view expected : {"Linux", "version"})
        if (scutil::takeWord(rest) != expected) return {};
    return std::string(scutil::takeWord(rest));
}

std::string architecture(const SystemRoot& root, const CpuInfo& cpu) {
    if (auto arch = sysctlString(root, "kernel.arch"); !arch.empty()) return arch;
    utsname names{};
    if (root.isHost() && ::uname(&names) == 0) return names.machine;
    return cpu.arch;
}

bool isVirtualMachine(const SystemRoot& root, const CpuInfo& cpu, const DmiTexts& dmi) {
    // The first domain of Xen drives the hardware: what runs there is the machine itself.
    if (readAttribute(root.path("proc/xen/capabilities")).value_or("").find("control_d") != std::string::npos)
        return false;
    if (hasFlag(cpu.flags, "hypervisor") || exists(root.path("sys/hypervisor/type"))) return true;
    if (!deviceTree(root, "hypervisor/compatible").empty()) return true;
    if (readTable(root.path("proc/sysinfo")).value_or("").find("VM00 Control Program") != std::string::npos)
        return true;
    return isVirtualMachineDmi(dmi);
}

bool canVirtualise(const SystemRoot& root, const CpuInfo& cpu) {
    return hasFlag(cpu.flags, "vmx") || hasFlag(cpu.flags, "svm") || hasFlag(cpu.flags, "sie") ||
           exists(root.path("dev/kvm"));
}

} // namespace

std::string dmiText(std::string_view raw) {
    std::string text = scutil::cleanText(scutil::takeLine(raw));
    const std::string small = lowered(text);
    const bool unfilled = std::any_of(placeholders.begin(), placeholders.end(),
                                      [&](std::string_view words) { return small.starts_with(words); });
    return unfilled ? std::string() : text;
}

std::string modelOfDmi(const DmiTexts& dmi) {
    if (dmi.sysVendor.starts_with("Apple") && !dmi.productName.empty()) return dmi.productName;
    if (lowered(dmi.sysVendor) == "lenovo") {
        const std::string& name = !dmi.productVersion.empty() ? dmi.productVersion : dmi.productFamily;
        if (!name.empty()) return withMaker("Lenovo", name);
    }
    if (!dmi.productName.empty()) return withMaker(dmi.sysVendor, dmi.productName);
    if (!dmi.boardName.empty()) return withMaker(dmi.boardVendor, dmi.boardName);
    return {};
}

bool isVirtualMachineDmi(const DmiTexts& dmi) {
    // The same vendors rent out and sell real machines.
    if (dmi.productName.find(".metal") != std::string::npos) return false;
    constexpr std::array<std::string_view, 15> names{
        "QEMU",        "KVM",       "VMware", "VirtualBox", "innotek",        "Bochs",    "Xen",
        "Parallels",   "OpenStack", "BHYVE",  "Amazon EC2", "Google Compute", "KubeVirt", "Virtual Machine",
        "DigitalOcean"};
    return std::any_of(names.begin(), names.end(), [&](std::string_view name) {
        return dmi.sysVendor.find(name) != std::string::npos ||
               dmi.productName.find(name) != std::string::npos;
    });
}

std::string osReleaseValue(std::string_view text, std::string_view key) {
    while (!text.empty()) {
        std::string_view line = scutil::trimmed(scutil::takeLine(text));
        if (scutil::takeUntil(line, '=') != key) continue;
        const char quote = line.empty() ? '\0' : line.front();
        if (quote == '"' || quote == '\'') {
            line.remove_prefix(1);
            if (line.ends_with(quote)) line.remove_suffix(1);
        }
        std::string value;
        for (size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '\\' && quote != '\'' && i + 1 < line.size()) ++i;
            value += line[i];
        }
        return scutil::cleanText(value);
    }
    return {};
}

MachineIdentity identifyMachine(const SystemRoot& root) {
    const CpuInfo cpu = parseCpuInfo(readTable(root.path("proc/cpuinfo")).value_or(""));
    const DmiTexts dmi = readDmi(root);
    auto osRelease = readTable(root.path("etc/os-release"));
    if (!osRelease) osRelease = readTable(root.path("usr/lib/os-release"));
    const auto os = [&](std::string_view key) { return osReleaseValue(osRelease.value_or(""), key); };

    MachineIdentity machine;
    machine.model = modelOfDmi(dmi);
    if (machine.model.empty()) machine.model = scutil::cleanText(deviceTree(root, "model"));
    if (machine.model.empty()) machine.model = cpu.hardware;
    machine.cpuBrand = processorName(cpu);
    machine.nominalClockHz = clockOfName(cpu.name);
    machine.arch = architecture(root, cpu);
    machine.osVersion = os("PRETTY_NAME");
    if (machine.osVersion.empty()) machine.osVersion = os("NAME");
    machine.osBuild = os("BUILD_ID");
    if (machine.osBuild.empty()) machine.osBuild = os("IMAGE_VERSION");
    if (const auto release = kernelRelease(root); !release.empty()) machine.kernel = "Linux " + release;
    machine.hostname = sysctlString(root, "kernel.hostname");
    if (machine.hostname.empty())
        machine.hostname = scutil::cleanText(readAttribute(root.path("etc/hostname")).value_or(""));
    machine.virtualMachine = isVirtualMachine(root, cpu, dmi);
    machine.hardwareVirtualisation = canVirtualise(root, cpu);
    machine.appleSilicon = deviceTree(root, "compatible").find("apple,t") != std::string::npos;
    return machine;
}

} // namespace sysinfo::platform
