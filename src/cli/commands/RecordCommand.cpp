// Records measurements as CSV until it is stopped.
#include "HelperKit/SignalPipe.h"
#include "cli/Command.h"
#include "cli/CommandLine.h"
#include "cli/Engine.h"
#include "cli/Output.h"
#include "cli/TerminalText.h"
#include "history/HistoryExport.h"
#include "history/HistoryTopProcesses.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <optional>
#include <sys/ioctl.h>
#include <unistd.h>

#include <fmt/format.h>

namespace quarn::cli {

namespace {

using Clock = std::chrono::steady_clock;

Clock::duration durationOf(double seconds) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

/// One line on standard error that is written over and over, when that is a terminal.
class ProgressLine {
public:
    void show(std::string_view text) {
        winsize size{};
        if (::isatty(STDERR_FILENO) == 0) return;
        const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
        const int columns = known ? size.ws_col - 1 : 79; // a full line would wrap
        const Charset charset = charsetOfEnvironment();
        std::string line = "\r" + fitted(text, columns, charset);
        line.append(static_cast<size_t>(std::max(0, columns - cellsOf(text, charset))), ' ');
        put(line);
        shown_ = true;
    }
    /// What is written next begins a line of its own.
    void end() {
        if (std::exchange(shown_, false)) put("\n");
    }

private:
    static void put(std::string_view text) {
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
    }
    bool shown_ = false;
};

class Recording {
public:
    explicit Recording(const Options& options)
        : file_(options.words.front()),
          interval_(durationOf(std::max(options.interval, shortest))),
          seconds_(std::min(options.seconds, longest)),
          engine_(options.root) {
        engine_.monitor().setTick(std::max(options.interval, shortest));
        engine_.wantSensors();
    }

    int run() {
        try {
            recorder_.startRecording(file_);
        } catch (const std::system_error& error) {
            throw std::runtime_error(std::string("cannot write ") + error.what());
        }
        engine_.monitor().sampleAuxNow();
        engine_.sample(); // the first only primes the rates
        std::optional<int> signal;
        const auto begin = Clock::now();
        auto next = begin + interval_;
        const auto end = begin + std::chrono::seconds(seconds_);
        while (!signal && (seconds_ == 0 || next <= end)) {
            signal = signals_.waitUntil(next);
            if (!signal) takeSample();
            next = std::max(next + interval_, Clock::now()); // what came late is left out, not hurried after
        }
        return finish(signal.value_or(SIGINT));
    }

private:
    void takeSample() {
        const Snapshot& snapshot = engine_.sample();
        last_ = std::make_shared<const HistorySample>(snapshot, top_.update(snapshot),
                                                      engine_.monitor().sensorGroupMaxima(), last_.get());
        recorder_.record(last_);
        tell();
    }

    void tell() {
        const auto state = recorder_.state();
        if (state.lost > 0 && !std::exchange(complained_, true)) {
            progress_.end();
            complain("cannot write " + state.lastError.value_or(file_) + "; trying on");
        }
        progress_.show(fmt::format("{} samples in {}", state.written, file_));
    }

    int finish(int signal) {
        recorder_.stopRecording();
        tell();
        const auto state = recorder_.state();
        if (!state.lastError) progress_.show("Recording finished. File: " + file_);
        progress_.end();
        if (signal != SIGINT) SignalPipe::doDefault(signal); // ends as programs end by it
        if (state.lastError && !complained_) complain("cannot write " + *state.lastError);
        return state.lastError ? failure : success;
    }

    static constexpr double shortest = 0.01; // a machine measured without a pause measures its measuring

    static constexpr uint64_t longest = 100ULL * 366 * 86'400;

    std::string file_;
    Clock::duration interval_;
    uint64_t seconds_; ///< 0 for no end
    SignalPipe signals_{SIGINT, SIGTERM, SIGHUP};
    SerialQueue queue_{"com.kelmora.quarn.recording"};
    HistoryExport::Recorder recorder_{queue_};
    Engine engine_;
    HistoryTopProcesses top_;
    SharedSample last_;
    ProgressLine progress_;
    bool complained_ = false;
};

} // namespace

int runRecord(const Options& options) {
    if (options.words.size() != 1) {
        complain("quarn record takes one FILE; see quarn record --help");
        return wrongUsage;
    }
    if (!options.root.isHost()) throw std::runtime_error("a captured machine does nothing to record");
    return Recording(options).run();
}

} // namespace quarn::cli
