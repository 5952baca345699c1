#pragma once

#include "HelperKit/Queue.h"

#include <memory>
#include <string>

namespace quarn {

/// One thread that runs posted work strictly in the order of posting. The label names the thread (the last 15
/// bytes of it in the kernel's view). A queue with nothing to do does not wake up.
///
/// An exception that escapes from posted work is logged with the label and the queue goes on.
///
/// The quality of service becomes a nice value. Where the system would not let the thread be raised again,
/// only a queue that is created as `background` is lowered, and stays so; others keep the program's value.
///
/// Timers run a millisecond or two late, never early. A timer's leeway becomes timer slack while the thread
/// waits, as far as every other timer of the queue permits it; work itself runs with the usual slack.
///
/// Destruction is orderly: work posted before it runs to its end, timers and delayed work do not fire any
/// more, then the thread is joined. What is posted once destruction began is dropped, and a `sync` returns
/// without running its work; neither blocks. Posted closures, run or not, are destroyed on the queue's
/// thread, except for those dropped that late. A queue must not be destroyed on its own thread.
///
/// The signal mask is that of the creating thread: block signals meant for a signalfd before creating queues.
class SerialQueue final : public Queue {
public:
    explicit SerialQueue(std::string label, QualityOfService qos = QualityOfService::utility);
    ~SerialQueue() override;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    const std::string& label() const;
    bool isCurrent() const; ///< whether the caller runs on this queue

    void async(std::function<void()> work) override;
    void sync(const std::function<void()>& work) override;
    void after(Duration delay, std::function<void()> work) override;
    /// The returned timer may outlive the queue.
    std::unique_ptr<RepeatingTimer> every(Duration interval, Duration leeway,
                                          std::function<void()> work) override;
    void setQualityOfService(QualityOfService qos) override;

private:
    struct State;
    class Timer;

    std::shared_ptr<State> state_;
};

} // namespace quarn
