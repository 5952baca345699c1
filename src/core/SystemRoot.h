#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace sysinfo {

/// The directory under which a machine's proc, sys, etc, run and dev are found: "/" for the machine at hand,
/// any other folder for a captured one. Every reading takes one, so that tests and `quarn --root DIR` read
/// captured machines through the very code that reads this one.
///
/// A captured root offers files only. Readings that need a live kernel (process CPU clocks, netlink,
/// statvfs) are absent under it.
class SystemRoot {
public:
    /// `directory` need not exist: what it lacks is absent.
    explicit SystemRoot(std::string directory) : directory_(std::move(directory)) {
        while (!directory_.empty() && directory_.back() == '/') directory_.pop_back();
    }

    static SystemRoot host() { return SystemRoot(""); }

    bool isHost() const { return directory_.empty(); }

    /// The path of `relative` (without a leading slash) under this root.
    std::string path(std::string_view relative) const {
        std::string result = directory_;
        result += '/';
        result += relative;
        return result;
    }

    /// Where the captured folder lies; empty for the host.
    const std::string& directory() const { return directory_; }

private:
    std::string directory_;
};

} // namespace sysinfo
