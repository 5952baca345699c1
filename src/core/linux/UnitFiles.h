#pragma once

#include "core/SystemRoot.h"

#include <string>
#include <string_view>
#include <vector>

namespace sysinfo::platform {

enum class UnitManager { ofSystem, ofUser };

/// The folders in which a service manager looks for the files of units, the first one first, each as it is
/// seen on that machine ("/etc/systemd/system"). `home` is that of the user whose manager it is.
std::vector<std::string> unitFolders(UnitManager manager, std::string_view home);

/// The path of a unit's file as that machine sees it; empty when there is none.
std::string findUnitFile(const SystemRoot& root, const std::vector<std::string>& folders,
                         std::string_view unit);

} // namespace sysinfo::platform
