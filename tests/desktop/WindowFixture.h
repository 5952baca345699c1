#pragma once

#include "HelperKit/SerialQueue.h"
#include "desktop/MainWindow.h"
#include "desktop/QtExecutor.h"
#include "desktop/SampleMachine.h"
#include "history/History.h"
#include "monitor/Monitor.h"
#include "ui/settings/Prefs.h"

namespace quarn::testing {

/// The main window over an engine that does not run: tests and pictures hand it its snapshots.
class WindowFixture {
public:
    explicit WindowFixture(LiveHistory history, sysinfo::SystemRoot root = sysinfo::SystemRoot::host(),
                           std::filesystem::path historyFile = metricsFile())
        : history_(std::move(history)),
          monitor_({.queue = queue_,
                    .aux = aux_,
                    .main = main_,
                    .prefs = Prefs::shared(),
                    .helper = helper_,
                    .root = std::move(root)}),
          records_({.monitor = monitor_,
                    .prefs = Prefs::shared(),
                    .main = main_,
                    .file = std::move(historyFile)}) {}

    /// Shows a snapshot, and its applications once they are worked at and events are processed.
    void show(const Snapshot& snapshot) {
        records_.apps().take(snapshot);
        window_.refresh(snapshot, SampleMachine::known());
    }

    desktop::MainWindow& window() { return window_; }
    Monitor& monitor() { return monitor_; }
    History& records() { return records_; }

private:
    desktop::QtExecutor main_;
    SerialQueue queue_{"test.sampler"};
    SerialQueue aux_{"test.aux"};
    NoHelper helper_;
    LiveHistory history_;
    Monitor monitor_;
    History records_;
    desktop::MainWindow window_{monitor_, Prefs::shared(), history_, records_};
};

/// Runs a QApplication without a display around `run`, with settings of its own in a folder that goes at the
/// end.
int withApplication(int argc, char** argv, const std::function<int()>& run);

} // namespace quarn::testing
