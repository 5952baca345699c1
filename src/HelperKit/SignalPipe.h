#pragma once

#include "core/UniqueFd.h"

#include <chrono>
#include <functional>
#include <initializer_list>
#include <optional>
#include <vector>

namespace quarn {

/// Turns signals into bytes of a pipe, so that a loop can serve them like any other input. One at a time;
/// destruction gives the signals back their default.
class SignalPipe {
public:
    explicit SignalPipe(std::initializer_list<int> signals);
    ~SignalPipe();
    SignalPipe(const SignalPipe&) = delete;
    SignalPipe& operator=(const SignalPipe&) = delete;

    int readable() const { return readEnd_.get(); }
    /// Calls `serve` for each signal that arrived.
    void drain(const std::function<void(int)>& serve);

    /// Waits until `time` for a signal and answers it; nullopt when none came. One that came before is found
    /// even when `time` is past.
    std::optional<int> waitUntil(std::chrono::steady_clock::time_point time);

    /// Lets the default of `signal` happen now (stop the program, or end it), then catches it again.
    static void doDefault(int signal);

private:
    std::vector<int> signals_;
    scutil::UniqueFd readEnd_;
    scutil::UniqueFd writeEnd_;
};

} // namespace quarn
