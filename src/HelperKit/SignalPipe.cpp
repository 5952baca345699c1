#include "HelperKit/SignalPipe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace quarn {
namespace {

volatile std::sig_atomic_t pipeEnd = -1;

void onSignal(int signal) {
    const int former = errno;
    const auto byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t written = ::write(pipeEnd, &byte, 1); // a full pipe has enough to say
    errno = former;
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

} // namespace

SignalPipe::SignalPipe(std::initializer_list<int> signals) : signals_(signals) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "no pipe for signals");
    }
    readEnd_.reset(ends[0]);
    writeEnd_.reset(ends[1]);
    pipeEnd = ends[1];
    for (const int signal : signals_) handle(signal, onSignal);
}

SignalPipe::~SignalPipe() {
    for (const int signal : signals_) handle(signal, SIG_DFL);
    pipeEnd = -1;
}

void SignalPipe::drain(const std::function<void(int)>& serve) {
    std::array<unsigned char, 64> bytes{};
    for (ssize_t count = 0; (count = ::read(readEnd_.get(), bytes.data(), bytes.size())) > 0;) {
        for (ssize_t i = 0; i < count; ++i) serve(bytes[static_cast<size_t>(i)]);
    }
}

std::optional<int> SignalPipe::waitUntil(std::chrono::steady_clock::time_point time) {
    using std::chrono::milliseconds;
    constexpr milliseconds none{0}, longest{3'600'000};
    std::optional<int> arrived;
    while (true) {
        const auto left = std::chrono::ceil<milliseconds>(time - std::chrono::steady_clock::now());
        pollfd polled{readable(), POLLIN, 0};
        ::poll(&polled, 1, static_cast<int>(std::clamp(left, none, longest).count()));
        drain([&](int signal) { arrived = signal; });
        if (arrived || left <= none) return arrived;
    }
}

void SignalPipe::doDefault(int signal) {
    handle(signal, SIG_DFL);
    ::raise(signal);
    handle(signal, onSignal);
}

} // namespace quarn
