#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sysinfo::platform {

/// What a file system says of its room.
struct VolumeSpace {
    uint64_t total = 0;
    uint64_t available = 0; ///< to ordinary users
};

/// Asks the file systems that may not reply: each on a thread of its own, with the last answer kept. A file
/// system that hangs holds one thread, however often it is asked. All functions may be called from any
/// thread.
class VolumeAnswers {
public:
    /// Blocks for as long as it likes; nullopt when the file system refuses. Runs on the asking threads, also
    /// after the end of this object: it must own what it uses.
    using Ask = std::function<std::optional<VolumeSpace>(const std::string& mountPoint)>;

    /// `patience` is what a call waits at most for file systems that are asked for the first time.
    VolumeAnswers(Ask ask, std::chrono::milliseconds patience);

    /// A mount to be asked about. `key` tells it from another mount that comes to the same place.
    struct Question {
        std::string key;
        std::string mountPoint;
    };
    struct Answer {
        enum class State { unknown, refused, known } state = State::unknown;
        VolumeSpace space;
    };
    /// The latest answer to each question, in order; `unknown` where none came yet, `refused` only while
    /// there never was a better one. Sets out to ask each again unless it is still being asked, and forgets
    /// the mounts that are not in `questions`.
    std::vector<Answer> answers(const std::vector<Question>& questions);

private:
    struct State;
    std::shared_ptr<State> state_; ///< shared with the asking threads, which may outlive this object
    std::chrono::milliseconds patience_;
};

} // namespace sysinfo::platform
