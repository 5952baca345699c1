#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sysinfo::platform {

/// What tells one state of a file or folder from another; all 0 when there is none.
struct FileStamp {
    uint64_t inode = 0;
    uint64_t size = 0;
    int64_t changedNs = 0; ///< when its content last changed
    bool isFolder = false;
    bool operator==(const FileStamp&) const = default;
};
FileStamp stampOf(const std::string& path);

/// Tells when files were added to folders, removed or replaced. Costs one question to the kernel for each
/// folder, and no descriptor or thread in between.
class FolderStamps {
public:
    void clear() { folders_.clear(); }
    /// Watches a folder that may not be there yet.
    void add(std::string path);
    /// Whether any folder differs from when it was added or from the last call.
    bool changed();

private:
    struct Folder {
        std::string path;
        FileStamp stamp;
    };
    std::vector<Folder> folders_;
};

} // namespace sysinfo::platform
