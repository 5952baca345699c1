#pragma once

#include "HelperKit/SignalPipe.h"
#include "cli/Engine.h"
#include "cli/live/KeyReader.h"
#include "cli/live/Terminal.h"
#include "cli/view/Frame.h"
#include "cli/view/Painter.h"

#include <atomic>
#include <memory>

namespace quarn::cli {

struct Options;

/// The live view: a terminal redrawn in place with each sample, until a key or a signal ends it.
class LiveView {
public:
    /// Throws std::system_error when standard input or output is no terminal.
    explicit LiveView(const Options& options);

    /// Answers the signal that ended the view, 0 when the user did. The terminal is given back by then.
    int run();

private:
    void askForSample();
    void takeSample();
    void startTimer();
    void draw();
    void readKeys();
    void onKey(char key);
    void onSignal(int signal);
    void resume();
    void end(int signal);

    SignalPipe signals_;
    std::atomic<bool> asked_{false}; ///< a sample is asked of the loop and has not begun
    Engine engine_;
    ColourDepth depth_;
    Painter painter_;
    KeyReader keys_;
    FrameOptions frame_;
    Trends trends_;      ///< up to the last sample
    Trends shownTrends_; ///< up to the snapshot shown
    Snapshot shown_;
    int samples_ = 0;
    int endedBy_ = 0;
    std::unique_ptr<RepeatingTimer> timer_;
    Terminal terminal_;
};

} // namespace quarn::cli
