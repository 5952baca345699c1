#pragma once

#include "core/SystemRoot.h"
#include "core/linux/NvidiaGate.h"
#include "core/linux/Nvml.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace sysinfo::platform {

/// The readings of the NVIDIA GPUs, shared by all who want them. A thread of its own talks to the library, so
/// that no caller waits for a driver that starts or hangs; it opens and closes the session as NvidiaGate
/// says, and closes it when nobody has asked for a while. Any thread.
class NvidiaGpus {
public:
    struct Setup {
        std::function<std::unique_ptr<Nvml>()> open;
        std::function<NvidiaGate::State()> state;
        std::chrono::milliseconds patience{50};        ///< how long a caller waits for a fresh reading
        std::chrono::milliseconds unusedClose{10'000}; ///< the session closes that long after the last call
    };

    explicit NvidiaGpus(Setup setup);
    ~NvidiaGpus();
    NvidiaGpus(const NvidiaGpus&) = delete;
    NvidiaGpus& operator=(const NvidiaGpus&) = delete;

    /// The instance of this machine; null where there is no NVIDIA GPU with its maker's driver, and for
    /// captured machines.
    static std::shared_ptr<NvidiaGpus> of(const SystemRoot& root);

    /// Readings as of `nanoseconds` on a steady clock; several callers of one moment share one. When the
    /// library does not answer in time: the former ones, or none. None while a GPU sleeps.
    std::vector<NvidiaReading> read(uint64_t nanoseconds);

private:
    void work(const std::stop_token& stop);
    void serve(double now, std::unique_lock<std::mutex>& lock);

    Setup setup_;
    std::mutex mutex_;
    std::condition_variable_any asked_;
    std::condition_variable answered_;
    uint64_t askedFor_ = 0;
    uint64_t answeredFor_ = 0;
    std::vector<NvidiaReading> readings_;
    NvidiaGate gate_; // the thread's own, as the next
    std::unique_ptr<Nvml> nvml_;
    std::jthread thread_; // last: it uses all above
};

} // namespace sysinfo::platform
