#pragma once

#include "core/UniqueFd.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct stat;

namespace quarn {

/// A setting that could not be stored; the message is for the user and says what to do.
class SettingsError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What tells one content of a file from the next without reading it.
struct FileStamp {
    FileStamp() = default;
    explicit FileStamp(const struct stat& status);

    uint64_t device = 0;
    uint64_t inode = 0;
    int64_t size = 0;
    int64_t modifiedNs = 0; ///< wall clock

    bool operator==(const FileStamp&) const = default;
    /// Whether the file changed so short a time ago that another change could leave the same stamp.
    bool isRecent() const;
};

/// The bytes of a settings file: safe to read while others write it, and replaced whole or not at all. Knows
/// nothing about what the bytes mean. Every function may wait for the disk.
class SettingsFile {
public:
    enum class State { missing, read, unreadable };
    struct Reading {
        State state = State::missing;
        std::string text;
        FileStamp stamp;
        std::string problem; ///< why it is unreadable: "Permission denied"
    };

    explicit SettingsFile(std::filesystem::path path) : path_(std::move(path)) {}

    const std::filesystem::path& path() const { return path_; }

    /// A file that is not regular, or is larger than any settings file can be, is unreadable.
    Reading read() const;
    /// nullopt when there is no such file; one system call.
    std::optional<FileStamp> stamp() const;

    /// Excludes other writers, in this program and others, until the descriptor is closed. Makes the folder
    /// when there is none. Waits for another writer at most five seconds. Throws SettingsError.
    scutil::UniqueFd lock() const;

    /// Puts `text` in place of the file, on disk before it returns, with the former owner and permissions
    /// (only the user's otherwise). A symbolic link stays: what it points at is replaced. Throws
    /// SettingsError, the former file untouched. Called under the lock.
    FileStamp replace(std::string_view text) const;

    /// Stores `text` as the first free of "<file>.broken-1", "<file>.broken-2", … and answers its path.
    /// Throws SettingsError. Called under the lock.
    std::filesystem::path keepAside(std::string_view text) const;

private:
    std::filesystem::path path_;
};

/// "$XDG_CONFIG_HOME/<folder>/settings.toml", in "~/.config" when the variable is not an absolute path. Empty
/// when the user has no home.
std::filesystem::path settingsFileIn(std::string_view folder);

} // namespace quarn
