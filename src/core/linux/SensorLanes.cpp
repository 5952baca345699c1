#include "core/linux/SensorLanes.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <pthread.h>
#include <thread>

namespace sysinfo::platform {

namespace {

constexpr int promptToReturn = 3;
constexpr uint64_t shortestPauseNs = 1'000'000'000;
constexpr uint64_t longestPauseNs = 8'000'000'000;

} // namespace

/// One thread and what it has to read. Shared with its thread, which may outlive everything else.
struct SensorLanes::Lane {
    std::mutex mutex;
    std::condition_variable posted;
    std::condition_variable finished;
    std::deque<Job> todo;
    const SensorChip* current = nullptr;
    uint64_t startedNs = 0;
    uint64_t deadlineNs = 0; ///< of the current chip
    uint64_t endedNs = 0;
    uint64_t tookNs = 0;
    int prompt = 0; ///< readings in a row that kept the deadline
    bool stopped = false;
    std::thread thread;

    bool isIdle() const { return todo.empty() && !current; }

    static std::shared_ptr<Lane> start(std::shared_ptr<const SensorIo> io) {
        auto lane = std::make_shared<Lane>();
        lane->thread = std::thread([lane, io = std::move(io)] { lane->run(*io); });
        ::pthread_setname_np(lane->thread.native_handle(), "quarn-sensors");
        return lane;
    }

    void post(std::vector<Job> jobs) {
        todo.insert(todo.end(), std::make_move_iterator(jobs.begin()), std::make_move_iterator(jobs.end()));
        posted.notify_one();
    }

    void run(const SensorIo& io) {
        std::unique_lock lock(mutex);
        for (;;) {
            posted.wait(lock, [this] { return stopped || !todo.empty(); });
            if (stopped) return;
            const Job job = std::move(todo.front());
            todo.pop_front();
            current = job.chip.get();
            startedNs = io.nowNs();
            deadlineNs = job.chip->deadlineNs(io, job.wanted.size());
            lock.unlock();
            try {
                job.chip->refresh(io, job.wanted);
            } catch (...) { // memory ran out: the chip has no new answers
            }
            lock.lock();
            endedNs = io.nowNs();
            tookNs = endedNs - startedNs;
            prompt = tookNs < deadlineNs ? prompt + 1 : 0;
            current = nullptr;
            if (todo.empty()) finished.notify_all();
        }
    }
};

SensorLanes::SensorLanes(std::shared_ptr<const SensorIo> io) : io_(std::move(io)) {}

SensorLanes::~SensorLanes() {
    if (common_) stop(common_);
    for (const auto& [chip, lane] : own_) stop(lane);
}

void SensorLanes::stop(const std::shared_ptr<Lane>& lane) {
    bool isIdle = false;
    {
        const std::lock_guard lock(lane->mutex);
        lane->todo.clear();
        lane->stopped = true;
        isIdle = lane->isIdle();
        lane->posted.notify_one();
    }
    if (isIdle) {
        lane->thread.join();
    } else {
        lane->thread.detach();
    }
}

void SensorLanes::refresh(std::vector<Job> jobs) {
    // First of all, while no new job makes their lanes look busy.
    std::vector<std::shared_ptr<Lane>> recovered;
    std::erase_if(own_, [&](const auto& entry) {
        const std::lock_guard lock(entry.second->mutex);
        if (!entry.second->isIdle() || entry.second->prompt < promptToReturn) return false;
        recovered.push_back(entry.second);
        return true;
    });
    for (const auto& lane : recovered) stop(lane);

    std::vector<Job> together;
    for (Job& job : jobs) {
        const auto slow = own_.find(job.chip.get());
        if (slow == own_.end()) {
            together.push_back(std::move(job));
        } else {
            refreshApart(*slow->second, std::move(job));
        }
    }
    refreshTogether(std::move(together));
}

// A chip that takes long is asked the less often.
void SensorLanes::refreshApart(Lane& lane, Job job) {
    const std::lock_guard lock(lane.mutex);
    const uint64_t pause = std::clamp(lane.tookNs * 5, shortestPauseNs, longestPauseNs);
    if (!lane.isIdle() || io_->nowNs() - lane.endedNs < pause) return;
    std::vector<Job> jobs;
    jobs.push_back(std::move(job));
    lane.post(std::move(jobs));
}

void SensorLanes::refreshTogether(std::vector<Job> jobs) {
    while (!jobs.empty()) {
        if (!common_) common_ = Lane::start(io_);
        std::unique_lock lock(common_->mutex);
        common_->post(std::move(jobs));
        jobs.clear();
        while (!common_->isIdle()) {
            const uint64_t allowed = common_->current ? common_->deadlineNs : io_->deadlineNs;
            const uint64_t spent = common_->current ? io_->nowNs() - common_->startedNs : 0;
            if (spent >= allowed) break;
            common_->finished.wait_for(lock, std::chrono::nanoseconds(allowed - spent));
        }
        if (common_->isIdle()) return;
        jobs.assign(std::make_move_iterator(common_->todo.begin()),
                    std::make_move_iterator(common_->todo.end()));
        common_->todo.clear();
        common_->prompt = 0;
        own_[common_->current] = common_;
        lock.unlock();
        common_.reset();
    }
}

void SensorLanes::settle(std::chrono::milliseconds patience) {
    const auto until = std::chrono::steady_clock::now() + patience;
    for (const auto& [chip, lane] : own_) {
        std::unique_lock lock(lane->mutex);
        lane->finished.wait_until(lock, until, [&, lane = lane.get()] { return lane->isIdle(); });
    }
}

void SensorLanes::forget(const SensorChip& chip) {
    const auto slow = own_.find(&chip);
    if (slow == own_.end()) return;
    stop(slow->second);
    own_.erase(slow);
}

} // namespace sysinfo::platform
