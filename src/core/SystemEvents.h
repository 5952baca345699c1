#pragma once

#include <functional>
#include <memory>

namespace sysinfo {

/// What the system tells without being asked: the power source changed, the machine goes
/// to sleep or woke up.
///
/// Sources on Linux: the kernel's device events for power supplies, and logind's PrepareForSleep signal where
/// a system bus is there. Where neither is, nothing is ever told; owners must not rely on a call.
class SystemEvents {
public:
    struct Handlers { ///< called on a thread of this object's own; each may be empty
        std::function<void()> powerSourceChanged = {};
        std::function<void()> wokeUp = {};
        std::function<void()> goingToSleep = {}; ///< the machine does not wait for what it does
    };

    explicit SystemEvents(Handlers handlers);
    /// Ends the thread; no handler runs afterwards.
    ~SystemEvents();
    SystemEvents(const SystemEvents&) = delete;
    SystemEvents& operator=(const SystemEvents&) = delete;

private:
    class Watcher;
    std::unique_ptr<Watcher> watcher_;
};

} // namespace sysinfo
