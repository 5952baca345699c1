#pragma once

#include "HelperKit/Queue.h"

#include <string>

namespace quarn {

/// One thread that runs posted work in order. The label names the thread (cut to 15 bytes in the kernel's
/// view, its last part kept).
///
/// An exception that escapes from posted work is logged once with the label and the queue goes on.
///
/// Destruction is orderly: work posted before it runs to its end, timers and delayed work do not fire any
/// more, then the thread is joined. A queue must not be destroyed on its own thread.
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
    std::unique_ptr<RepeatingTimer> every(Duration interval, Duration leeway,
                                          std::function<void()> work) override;
    void setQualityOfService(QualityOfService qos) override;

private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quarn
