#include "history/RecorderLock.h"

#include "history/HistoryFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <system_error>

namespace quarn {

bool RecorderLock::acquire(const std::filesystem::path& file) {
    if (isHeld()) return true;
    makePrivateFolder(file.parent_path());
    const std::string path = file.string() + ".lock";
    scutil::UniqueFd fd(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!fd) throw std::system_error(errno, std::generic_category(), "lock " + path);
    if (::flock(fd.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK || errno == EINTR) return false;
        throw std::system_error(errno, std::generic_category(), "lock " + path);
    }
    fd_ = std::move(fd);
    return true;
}

} // namespace quarn
