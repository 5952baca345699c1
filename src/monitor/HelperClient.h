#pragma once

#include "HelperKit/WireRecords.h"

#include <chrono>
#include <functional>
#include <optional>

namespace quarn {

/// What a poll of the privileged helper for its process list came to.
struct HelperFetch {
    enum Outcome {
        fresh,       ///< `list` is new
        pending,     ///< the answer is outstanding: keep the list at hand
        unavailable, ///< read the processes locally
    };
    Outcome outcome = unavailable;
    HelperProcessList list;
};

/// What the Monitor asks of the privileged helper. Called on the sampler queue (processes) and the auxiliary
/// queue (power); every call returns within its time-out.
class HelperClient {
public:
    virtual ~HelperClient() = default;
    virtual bool isEnabled() const = 0;
    virtual bool isConnected() const = 0;
    /// `onReply` (optional) is called on any thread when an answer that was pending arrives.
    virtual HelperFetch pollProcesses(std::chrono::milliseconds timeout, std::function<void()> onReply) = 0;
    virtual std::optional<HelperPower> fetchPower(std::chrono::milliseconds timeout) = 0;
};

/// The helper of a machine without one.
class NoHelper final : public HelperClient {
public:
    bool isEnabled() const override { return false; }
    bool isConnected() const override { return false; }
    HelperFetch pollProcesses(std::chrono::milliseconds, std::function<void()>) override { return {}; }
    std::optional<HelperPower> fetchPower(std::chrono::milliseconds) override { return {}; }
};

} // namespace quarn
