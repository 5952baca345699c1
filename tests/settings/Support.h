#pragma once

#include "support/Contains.h"
#include "support/TempRoot.h"
#include "ui/settings/SettingsStore.h"

#include <algorithm>

namespace quarn::testing {

/// A folder for one settings file, and that file's content.
struct SettingsFolder : TempRoot {
    using TempRoot::write;
    std::filesystem::path file() const { return path() / "settings.toml"; }
    void write(std::string_view text) { write("settings.toml", text); }
    std::string text(const std::string& name = "settings.toml") const { return readFile(path() / name); }
    /// The names in the folder, without the lock's, which stays.
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(path()))
            if (entry.path().extension() != ".lock") result.push_back(entry.path().filename());
        std::sort(result.begin(), result.end());
        return result;
    }
};

/// A store that looks at the file with every read.
struct WatchfulStore : SettingsStore {
    explicit WatchfulStore(const SettingsFolder& folder)
        : SettingsStore(folder.file(), std::chrono::nanoseconds(0)) {}
};

/// A test on a settings file that is not there yet.
struct SettingsTest : ::testing::Test {
    SettingsFolder folder;
    WatchfulStore store{folder};
};

/// The message of the SettingsError that `action` throws; empty when it throws none.
inline std::string failureOf(const std::function<void()>& action) {
    try {
        action();
        return {};
    } catch (const SettingsError& error) {
        return error.what();
    }
}

} // namespace quarn::testing
