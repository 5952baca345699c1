#include "core/linux/FolderStamps.h"

#include <sys/stat.h>

namespace sysinfo::platform {

FileStamp stampOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    return {status.st_ino, static_cast<uint64_t>(status.st_size),
            status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec, S_ISDIR(status.st_mode)};
}

void FolderStamps::add(std::string path) {
    const FileStamp stamp = stampOf(path);
    folders_.push_back({std::move(path), stamp});
}

bool FolderStamps::changed() {
    bool changed = false;
    for (auto& folder : folders_) {
        const FileStamp now = stampOf(folder.path);
        changed = changed || now != folder.stamp;
        folder.stamp = now;
    }
    return changed;
}

} // namespace sysinfo::platform
