#include "ui/settings/SettingsFile.h"

#include "HelperKit/ReplaceFile.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>

#include <fmt/format.h>

namespace quarn {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr int64_t greatestSize = 4 << 20;
constexpr auto lockPatience = 5s;

[[noreturn]] void fail(const fs::path& path, int error) {
    const char* advice = error == ENOSPC || error == EDQUOT ? "Free some space and try again."
                         : error == EACCES || error == EPERM || error == EROFS
                             ? "Check the permissions of the file and of its folder."
                             : "Try again.";
    throw SettingsError(fmt::format("cannot write {}: {}. The stored settings are unchanged. {}",
                                    path.string(), std::strerror(error), advice));
}

bool readAll(int fd, std::string& text) {
    char buffer[16384];
    for (;;) {
        const ssize_t count = ::read(fd, buffer, sizeof buffer);
        if (count == 0) return true;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        text.append(buffer, static_cast<size_t>(count));
        if (static_cast<int64_t>(text.size()) > greatestSize) {
            errno = EFBIG;
            return false;
        }
    }
}

void makeFolder(const fs::path& folder) {
    std::error_code error;
    if (fs::is_directory(folder, error) || folder.empty()) return;
    if (folder.has_parent_path() && folder.parent_path() != folder) makeFolder(folder.parent_path());
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) fail(folder, errno);
}

} // namespace

FileStamp::FileStamp(const struct stat& status)
    : device(status.st_dev),
      inode(status.st_ino),
      size(status.st_size),
      modifiedNs(status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec) {}

bool FileStamp::isRecent() const {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const int64_t age = now.tv_sec * 1'000'000'000 + now.tv_nsec - modifiedNs;
    return age < 1'000'000'000; // file systems count in steps of up to a second
}

SettingsFile::Reading SettingsFile::read() const {
    Reading reading;
    const auto unreadable = [&](const char* problem) {
        reading.state = State::unreadable;
        reading.problem = problem;
        return reading;
    };
    const scutil::UniqueFd fd(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!fd) return errno == ENOENT ? reading : unreadable(std::strerror(errno));
    struct stat status {};
    if (::fstat(fd.get(), &status) != 0) return unreadable(std::strerror(errno));
    if (!S_ISREG(status.st_mode)) return unreadable("it is not a regular file");
    reading.stamp = FileStamp(status);
    if (!readAll(fd.get(), reading.text)) return unreadable(std::strerror(errno));
    reading.state = State::read;
    return reading;
}

std::optional<FileStamp> SettingsFile::stamp() const {
    struct stat status {};
    if (::stat(path_.c_str(), &status) != 0) return {};
    return FileStamp(status);
}

scutil::UniqueFd SettingsFile::lock() const {
    if (path_.empty()) throw SettingsError("cannot store settings: this user has no home folder");
    makeFolder(path_.parent_path());
    const fs::path lockPath = path_.string() + ".lock";
    // Read-only is enough to lock, so that a lock file made by an administrator serves the user too.
    scutil::UniqueFd fd(::open(lockPath.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!fd) fail(lockPath, errno);
    const auto deadline = std::chrono::steady_clock::now() + lockPatience;
    while (::flock(fd.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) fail(lockPath, errno);
        if (std::chrono::steady_clock::now() > deadline)
            throw SettingsError(
                fmt::format("cannot write {}: another program has kept it locked for {} s. The "
                            "stored settings are unchanged. End that program and try again.",
                            path_.string(), std::chrono::seconds(lockPatience).count()));
        std::this_thread::sleep_for(1ms);
    }
    return fd;
}

FileStamp SettingsFile::replace(std::string_view text) const {
    try {
        replaceFile(path_, text, NewFile::forUserAlone);
    } catch (const std::system_error& error) {
        fail(path_, error.code().value());
    }
    return stamp().value_or(FileStamp());
}

fs::path SettingsFile::keepAside(std::string_view text) const {
    for (int number = 1;; ++number) {
        fs::path aside = fmt::format("{}.broken-{}", path_.string(), number);
        const scutil::UniqueFd fd(::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!fd && errno == EEXIST) continue;
        if (!fd) fail(aside, errno);
        if (!writeAll(fd.get(), text) || ::fsync(fd.get()) != 0) {
            const int error = errno;
            ::unlink(aside.c_str());
            fail(aside, error);
        }
        return aside;
    }
}

fs::path settingsFileIn(std::string_view folder) {
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    fs::path base = configured ? configured : "";
    if (!base.is_absolute()) {
        const char* home = std::getenv("HOME");
        const passwd* user = home && *home ? nullptr : ::getpwuid(::getuid());
        base = user ? user->pw_dir : home ? home : "";
        if (!base.is_absolute()) return {};
        base /= ".config";
    }
    return base / folder / "settings.toml";
}

} // namespace quarn
