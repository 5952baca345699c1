#include "HelperKit/SerialQueue.h"
#include "HelperKit/Asio.h"

#include "HelperKit/GuardedRun.h"
#include "HelperKit/ThreadTuning.h"
#include "HelperKit/TimerTable.h"

#include <asio/basic_waitable_timer.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include <future>
#include <mutex>
#include <thread>
#include <utility>

namespace quarn {

namespace {

/// Asio waits in whole milliseconds, rounded down: it would wake just before the time, and then once more.
struct RoundedUpWait {
    using Duration = std::chrono::steady_clock::duration;
    static Duration to_wait_duration(const Duration& wait) {
        return std::chrono::ceil<std::chrono::milliseconds>(wait);
    }
    static Duration to_wait_duration(const std::chrono::steady_clock::time_point& due) {
        return to_wait_duration(due - std::chrono::steady_clock::now());
    }
};

using WakeUpTimer =
    asio::basic_waitable_timer<std::chrono::steady_clock, RoundedUpWait, asio::io_context::executor_type>;

} // namespace

/// What the queue, its thread and its timers share. Below `thread`, everything belongs to the thread.
struct SerialQueue::State {
    State(std::string name, QualityOfService qos) : label(std::move(name)) {
        thread = std::thread([this, qos] { loop(qos); });
    }

    bool isCurrent() const { return current == this; }

    /// Has the thread run `work`; false, and nothing done, once the queue is closed.
    template <class Work>
    bool post(Work&& work) {
        const std::lock_guard lock(gate);
        if (!open) return false;
        asio::post(context, [this, work = std::forward<Work>(work)]() mutable { perform(work); });
        return true;
    }

    /// Lets what was posted so far run, then ends the thread.
    void close() {
        {
            const std::lock_guard lock(gate);
            open = false;
            asio::post(context, [this] { context.stop(); });
        }
        thread.join();
    }

    void start(std::shared_ptr<TimedWork> timed) {
        post([this, timed = std::move(timed)]() mutable {
            timers.add(std::move(timed));
            runTimers();
        });
    }

    /// On the thread itself at once, so that a closure does not outlive the cancelling of its timer.
    void forget(const std::shared_ptr<TimedWork>& timed) {
        const auto remove = [this, timed] {
            timers.remove(*timed);
            arm();
        };
        if (isCurrent())
            remove();
        else
            post(remove);
    }

    const std::string label;
    // Not the hint for a single thread: with it, work posted by the thread itself would overtake other work.
    asio::io_context context;
    std::mutex gate;
    bool open = true; ///< guarded by `gate`
    std::thread thread;

    TimerTable timers{[] { return std::chrono::steady_clock::now(); },
                      [this](const std::function<void()>& work) { perform(work); }};
    std::optional<WakeUpTimer> wakeUp; ///< made when first needed: it costs an epoll instance
    std::optional<TimerTable::Instant> armedFor;
    std::chrono::nanoseconds usualSlack{};
    std::chrono::nanoseconds slack{}; ///< as set now

private:
    void loop(QualityOfService qos) {
        current = this;
        nameThread(label);
        setThreadUrgency(qos, qos == QualityOfService::background ? Lowering::forGood
                                                                  : Lowering::onlyIfReversible);
        usualSlack = slack = threadTimerSlack();
        const auto keepWaiting = asio::make_work_guard(context);
        do setSlack(slackForWait());
        while (context.run_one() > 0);
        timers.clear();
    }

    template <class Work>
    void perform(Work& work) {
        setSlack(usualSlack); // work waits for things of its own
        runGuarded(label, work);
    }

    void runTimers() {
        timers.runDue();
        arm();
    }

    void arm() {
        const auto next = timers.nextWakeUp();
        const auto due = next ? std::optional(next->due) : std::nullopt;
        if (due == armedFor) return;
        if (!wakeUp) wakeUp.emplace(context);
        wakeUp->cancel();
        armedFor = due;
        if (!due) return;
        wakeUp->expires_at(*due);
        wakeUp->async_wait([this](const asio::error_code& error) {
            if (error) return; // replaced by a wait for another time
            armedFor.reset();
            runTimers();
        });
    }

    std::chrono::nanoseconds slackForWait() const {
        const auto next = timers.nextWakeUp();
        return next ? std::max(next->slack, usualSlack) : usualSlack;
    }

    void setSlack(std::chrono::nanoseconds wanted) {
        if (wanted != slack) setThreadTimerSlack(slack = wanted);
    }

    static thread_local const State* current;
};

thread_local const SerialQueue::State* SerialQueue::State::current = nullptr;

class SerialQueue::Timer final : public RepeatingTimer {
public:
    Timer(std::weak_ptr<State> queue, std::shared_ptr<TimedWork> timed)
        : queue_(std::move(queue)), timed_(std::move(timed)) {}
    ~Timer() override { cancel(); }

    void cancel() override {
        if (timed_->cancelled.exchange(true)) return;
        if (const auto queue = queue_.lock()) queue->forget(timed_);
    }

private:
    std::weak_ptr<State> queue_;
    std::shared_ptr<TimedWork> timed_;
};

SerialQueue::SerialQueue(std::string label, QualityOfService qos)
    : state_(std::make_shared<State>(std::move(label), qos)) {}

SerialQueue::~SerialQueue() { state_->close(); }

const std::string& SerialQueue::label() const { return state_->label; }

bool SerialQueue::isCurrent() const { return state_->isCurrent(); }

void SerialQueue::async(std::function<void()> work) { state_->post(std::move(work)); }

void SerialQueue::sync(const std::function<void()>& work) {
    if (isCurrent()) return work();
    std::packaged_task<void()> task(std::cref(work));
    auto result = task.get_future();
    if (state_->post(std::move(task))) result.get();
}

void SerialQueue::after(Duration delay, std::function<void()> work) {
    state_->start(std::make_shared<TimedWork>(std::chrono::steady_clock::now(), delay, Duration::zero(),
                                              Duration::zero(), std::move(work)));
}

std::unique_ptr<RepeatingTimer> SerialQueue::every(Duration interval, Duration leeway,
                                                   std::function<void()> work) {
    const auto timed = std::make_shared<TimedWork>(std::chrono::steady_clock::now(), Duration::zero(),
                                                   std::max(interval, Duration(1)), leeway, std::move(work));
    state_->start(timed);
    return std::make_unique<Timer>(state_, timed);
}

void SerialQueue::setQualityOfService(QualityOfService qos) {
    const auto apply = [qos] { setThreadUrgency(qos, Lowering::onlyIfReversible); };
    if (isCurrent())
        apply();
    else
        state_->post(apply);
}

} // namespace quarn
