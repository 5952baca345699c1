#pragma once

#include "core/UniqueFd.h"

#include <functional>
#include <initializer_list>
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

    /// Lets the default of `signal` happen now (stop the program, or end it), then catches it again.
    static void doDefault(int signal);

private:
    std::vector<int> signals_;
    scutil::UniqueFd readEnd_;
    scutil::UniqueFd writeEnd_;
};

} // namespace quarn
