#pragma once

#include "core/linux/SensorChip.h"

#include <chrono>
#include <memory>
#include <unordered_map>
#include <vector>

namespace sysinfo::platform {

/// The threads that read chips, so that no caller waits for hardware that does not answer.
///
/// One common lane reads chips one after another, and the caller waits for it. A chip that takes longer than
/// the deadline keeps that thread as a lane of its own: the caller goes on with a new common lane, and from
/// then on the slow chip is read in its own lane without anyone waiting. When it answered promptly three
/// times in a row it returns to the common lane.
///
/// A thread stuck in the kernel cannot be ended; on destruction it is left behind with what it needs.
/// Used by one thread at a time.
class SensorLanes {
public:
    struct Job {
        std::shared_ptr<SensorChip> chip;
        std::vector<size_t> wanted; ///< positions of its channels
    };

    explicit SensorLanes(std::shared_ptr<const SensorIo> io);
    ~SensorLanes();
    SensorLanes(const SensorLanes&) = delete;
    SensorLanes& operator=(const SensorLanes&) = delete;

    /// Refreshes each chip; returns when all but the slow ones are done.
    void refresh(std::vector<Job> jobs);

    /// Waits for the lanes of slow chips to finish what they read, at most `patience`.
    void settle(std::chrono::milliseconds patience);

    /// Gives up the lane of a chip that is gone.
    void forget(const SensorChip& chip);

    size_t slowChips() const { return own_.size(); }

private:
    struct Lane;

    void refreshApart(Lane& lane, Job job);
    void refreshTogether(std::vector<Job> jobs);
    static void stop(const std::shared_ptr<Lane>& lane);

    std::shared_ptr<const SensorIo> io_;
    std::shared_ptr<Lane> common_;
    std::unordered_map<const SensorChip*, std::shared_ptr<Lane>> own_;
};

} // namespace sysinfo::platform
