#pragma once

#include "core/UniqueFd.h"

#include <filesystem>

namespace quarn {

/// The right to record into a database or an archive, which one program has at a time: an advisory lock on a
/// file beside it. The system takes it back when the program ends, however that happens.
class RecorderLock {
public:
    /// Tries without waiting; false while another program has it. Creates the folder when missing. Throws
    /// std::system_error when the lock file cannot be made.
    bool acquire(const std::filesystem::path& file);
    bool isHeld() const { return static_cast<bool>(fd_); }
    void release() { fd_.reset(); }

private:
    scutil::UniqueFd fd_;
};

} // namespace quarn
