#pragma once

#include "core/Machine.h"

#include <string_view>

namespace sysinfo::platform {

/// The texts of a machine's firmware table, cleaned; placeholders that a manufacturer left in ("To be filled
/// by O.E.M.") are empty.
struct DmiTexts {
    std::string sysVendor;
    std::string productName;
    std::string productVersion;
    std::string productFamily;
    std::string boardVendor;
    std::string boardName;
};

/// The text of one field as above. Only its first line counts: some boards keep an older, longer text behind.
std::string dmiText(std::string_view raw);

/// What people call the machine. Apple's identifier stands alone; Lenovo keeps the name in the version;
/// otherwise maker and product, or the board's where the machine has none.
std::string modelOfDmi(const DmiTexts& dmi);

/// Whether these are the texts of a virtual machine.
bool isVirtualMachineDmi(const DmiTexts& dmi);

/// The value of `key` in a file of KEY=value lines with shell quoting; empty when it is not there.
std::string osReleaseValue(std::string_view text, std::string_view key);

} // namespace sysinfo::platform
