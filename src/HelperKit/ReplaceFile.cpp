#include "HelperKit/ReplaceFile.h"

#include "core/UniqueFd.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quarn {

namespace fs = std::filesystem;

namespace {

/// Where a chain of symbolic links ends, whether or not something is there.
fs::path linkTarget(fs::path path) {
    constexpr int mostLinks = 40;
    std::error_code ignored;
    for (int followed = 0; followed < mostLinks && fs::is_symlink(path, ignored); ++followed) {
        const fs::path next = fs::read_symlink(path, ignored);
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    return path;
}

fs::path folderOf(const fs::path& file) { return file.has_parent_path() ? file.parent_path() : "."; }

/// A file of its own beside `target`; `name` becomes its path.
scutil::UniqueFd createBeside(const fs::path& target, NewFile readers, std::string& name) {
    const std::string stem = "." + target.filename().string() + "." + std::to_string(::getpid()) + "-";
    for (int number = 1;; ++number) {
        name = (target.parent_path() / (stem + std::to_string(number))).string();
        const mode_t mode = readers == NewFile::forUserAlone ? 0600 : 0666;
        scutil::UniqueFd fd(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (fd || errno != EEXIST) return fd;
    }
}

/// A new file keeps the owner and permissions of the one it replaces; the first one belongs to the folder's
/// owner, so that a run as administrator does not lock the user out.
void inheritOwner(int fd, const fs::path& target) {
    struct stat former {};
    const bool exists = ::stat(target.c_str(), &former) == 0;
    if (!exists && ::stat(folderOf(target).c_str(), &former) != 0) return;
    if (::fchown(fd, former.st_uid, former.st_gid) != 0 && errno != EPERM) return;
    if (exists) ::fchmod(fd, former.st_mode & 07777);
}

void syncFolder(const fs::path& folder) {
    const scutil::UniqueFd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd) ::fsync(fd.get()); // some file systems cannot: the rename itself has been done
}

[[noreturn]] void fail(const fs::path& file, int error) {
    throw std::system_error(error, std::generic_category(), file.string());
}

void writeInto(const fs::path& file, std::string_view content) {
    const scutil::UniqueFd fd(::open(file.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (!fd || !writeAll(fd.get(), content)) fail(file, errno);
}

} // namespace

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(fd, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

bool isSpecialFile(const fs::path& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

void replaceFile(const fs::path& file, std::string_view content, NewFile readers) {
    if (isSpecialFile(file)) return writeInto(file, content);
    const fs::path target = linkTarget(file);
    std::string temporary;
    const scutil::UniqueFd fd = createBeside(target, readers, temporary);
    if (!fd) fail(file, errno);
    inheritOwner(fd.get(), target);
    if (!writeAll(fd.get(), content) || ::fsync(fd.get()) != 0 ||
        ::rename(temporary.c_str(), target.c_str()) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        fail(file, error);
    }
    syncFolder(folderOf(target));
}

} // namespace quarn
