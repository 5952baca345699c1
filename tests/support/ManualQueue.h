#pragma once

#include "HelperKit/Queue.h"

#include <cstdint>
#include <deque>
#include <map>

namespace quarn::testing {

/// A queue whose work and time move only when a test says so. Single-threaded.
class ManualQueue final : public Queue {
public:
    void async(std::function<void()> work) override { pending_.push_back(std::move(work)); }
    void sync(const std::function<void()>& work) override { work(); }
    void after(Duration delay, std::function<void()> work) override;
    std::unique_ptr<RepeatingTimer> every(Duration interval, Duration leeway,
                                          std::function<void()> work) override;
    void setQualityOfService(QualityOfService value) override { qos = value; }

    /// Runs posted work, including what it posts, until none is left.
    void run();
    /// Moves time on, running timers and posted work in their order.
    void advance(Duration by);

    double seconds() const { return std::chrono::duration<double>(now_).count(); }
    size_t timerCount() const { return timed_.size(); }
    size_t pendingCount() const { return pending_.size(); }

    QualityOfService qos = QualityOfService::utility;
    Duration lastInterval{}; ///< of the newest repeating timer, as the next
    Duration lastLeeway{};

private:
    struct Timed {
        Duration due;
        Duration interval; ///< 0 for work that runs once
        std::function<void()> work;
    };
    class Timer;

    Duration now_{};
    uint64_t nextId_ = 0;
    std::deque<std::function<void()>> pending_;
    std::map<uint64_t, Timed> timed_;
};

} // namespace quarn::testing
