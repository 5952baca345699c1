#include "cli/live/LiveView.h"

#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/PlainSnapshot.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace quarn::cli {
namespace {

using namespace std::chrono_literals;

// The first rates are shown after this pause, not after a whole tick.
constexpr double firstInterval = 0.3;
constexpr auto timerLeeway = 20ms;

const char* environment(const char* name) { return std::getenv(name); }

/// What some terminals tell in COLORFGBG ("15;0": a white on black); dark where they tell nothing.
Background initialBackground() {
    const char* value = environment("COLORFGBG");
    const std::string_view text(value == nullptr ? "" : value);
    const std::string_view background = text.substr(text.rfind(';') + 1);
    return background == "7" || background == "15" ? Background::light : Background::dark;
}

std::chrono::nanoseconds nanoseconds(double seconds) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
}

} // namespace

LiveView::LiveView(const Options& options)
    : signals_({SIGINT, SIGTERM, SIGHUP, SIGTSTP, SIGCONT, SIGWINCH}),
      engine_(options.root),
      depth_(colourDepth(environment)),
      painter_(Palette(depth_, initialBackground())) {
    frame_.charset = charsetOfEnvironment();
    frame_.trends = &shownTrends_;
    frame_.host = machineName(options.root);
    if (options.root.isHost()) frame_.ownPid = ::getpid();
    keys_.onKey = [this](char key) { onKey(key); };
    keys_.onBackground = [this](Background background) {
        painter_.setPalette(Palette(depth_, background));
        draw();
    };
}

int LiveView::run() {
    RunLoop& loop = engine_.loop();
    const auto keyboard = loop.watch(STDIN_FILENO, [this] { readKeys(); });
    const auto signals =
        loop.watch(signals_.readable(), [this] { signals_.drain([this](int signal) { onSignal(signal); }); });
    if (depth_ == ColourDepth::indexed || depth_ == ColourDepth::trueColour) writeOut(askBackground);
    engine_.monitor().setTick(firstInterval);
    takeSample();
    engine_.queue().after(nanoseconds(firstInterval), [this] { askForSample(); });
    loop.run();
    timer_.reset();
    terminal_.leave();
    return endedBy_;
}

/// Called on the queue. Samples are asked of the loop one at a time, so that none pile up while the terminal
/// does not take output.
void LiveView::askForSample() {
    if (asked_.exchange(true)) return;
    engine_.loop().async([this] {
        asked_ = false;
        takeSample();
    });
}

void LiveView::takeSample() {
    const Snapshot& snapshot = engine_.sample();
    ++samples_;
    if (samples_ == 2) startTimer();
    if (samples_ == 3) return; // it came at once and only begins the first whole tick
    const Known known = engine_.known();
    trends_.add(snapshot, known);
    if (frame_.motion == FrameOptions::Motion::frozen) return;
    shown_ = snapshot;
    shownTrends_ = trends_;
    frame_.known = known;
    draw();
}

void LiveView::startTimer() {
    engine_.monitor().setTick(0);
    const auto tick = nanoseconds(baseTick(engine_.monitor().profile()));
    timer_ = engine_.queue().every(tick, timerLeeway, [this] { askForSample(); });
}

void LiveView::draw() { writeOut(painter_.paint(frame(shown_, terminal_.size(), frame_))); }

void LiveView::readKeys() {
    std::array<char, 256> bytes{};
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count > 0) {
        keys_.feed({bytes.data(), static_cast<size_t>(count)});
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
        end(SIGHUP); // the terminal is gone
    }
}

void LiveView::onKey(char key) {
    switch (key) {
    case 'q':
    case 'Q': return end(0);
    case ' ': {
        const bool frozen = frame_.motion == FrameOptions::Motion::frozen;
        frame_.motion = frozen ? FrameOptions::Motion::running : FrameOptions::Motion::frozen;
        if (frozen) {
            shown_ = engine_.monitor().latest();
            shownTrends_ = trends_;
            frame_.known = engine_.known();
        }
        return draw();
    }
    case 'c': frame_.order = ProcessOrder::cpu; break;
    case 'm': frame_.order = ProcessOrder::memory; break;
    case 'd': frame_.order = ProcessOrder::disk; break;
    case 'p': frame_.order = ProcessOrder::pid; break;
    case 'n': frame_.order = ProcessOrder::name; break;
    case '\f': painter_.forget(); break; // Ctrl-L draws everything anew
    default: return;
    }
    draw();
}

void LiveView::onSignal(int signal) {
    switch (signal) {
    case SIGWINCH: return draw();
    case SIGTSTP:
        terminal_.leave();
        SignalPipe::doDefault(SIGTSTP); // returns when the program goes on
        return resume();
    case SIGCONT: return resume();
    case SIGINT: return end(0);
    default: return end(signal);
    }
}

void LiveView::resume() {
    terminal_.enter();
    painter_.forget();
    draw();
}

void LiveView::end(int signal) {
    endedBy_ = signal;
    engine_.loop().stop();
}

int runLive(const Options& options) {
    const char* term = environment("TERM");
    const bool capable = term != nullptr && *term != '\0' && std::string_view(term) != "dumb";
    if (!capable || ::isatty(STDIN_FILENO) == 0 || ::isatty(STDOUT_FILENO) == 0) return runSnapshot(options);
    const int signal = LiveView(options).run();
    if (signal != 0) SignalPipe::doDefault(signal); // ends as programs end by it
    return 0;
}

} // namespace quarn::cli
