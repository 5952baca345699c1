#include "core/linux/UnitFiles.h"

#include "core/linux/Files.h"

namespace sysinfo::platform {

std::vector<std::string> unitFolders(UnitManager manager, std::string_view home) {
    if (manager == UnitManager::ofSystem)
        return {"/etc/systemd/system",    "/run/systemd/system",           "/run/systemd/transient",
                "/run/systemd/generator", "/usr/local/lib/systemd/system", "/usr/lib/systemd/system",
                "/lib/systemd/system",    "/run/systemd/generator.late"};
    std::vector<std::string> folders;
    if (!home.empty()) folders.push_back(std::string(home) + "/.config/systemd/user");
    folders.insert(folders.end(), {"/etc/systemd/user", "/run/systemd/user", "/usr/local/lib/systemd/user",
                                   "/usr/lib/systemd/user", "/lib/systemd/user"});
    return folders;
}

std::string findUnitFile(const SystemRoot& root, const std::vector<std::string>& folders,
                         std::string_view unit) {
    if (unit.empty() || unit.find('/') != unit.npos) return {};
    for (const auto& folder : folders) {
        std::string path = folder + '/' + std::string(unit);
        if (exists(root.path(std::string_view(path).substr(1)))) return path;
    }
    return {};
}

} // namespace sysinfo::platform
