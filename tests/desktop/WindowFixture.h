#pragma once

#include "HelperKit/SerialQueue.h"
#include "desktop/MainWindow.h"
#include "desktop/Page.h"
#include "desktop/QtExecutor.h"
#include "desktop/SampleMachine.h"
#include "history/History.h"
#include "monitor/Monitor.h"
#include "ui/settings/Prefs.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QTest>

namespace quarn::testing {

/// The main window over an engine that does not run: tests and pictures hand it its snapshots.
class WindowFixture {
public:
    explicit WindowFixture(LiveHistory history, sysinfo::SystemRoot root = sysinfo::SystemRoot::host(),
                           std::filesystem::path historyFile = metricsFile(), Prefs& prefs = Prefs::shared())
        : prefs_(prefs),
          history_(std::move(history)),
          monitor_({.queue = queue_,
                    .aux = aux_,
                    .main = main_,
                    .prefs = prefs,
                    .helper = helper_,
                    .root = std::move(root)}),
          records_({.monitor = monitor_, .prefs = prefs, .main = main_, .file = std::move(historyFile)}) {}

    /// Shows the window with a page in front.
    desktop::MainWindow& open(const char* page, QSize size = {900, 600}) {
        window_.resize(size);
        window_.show();
        window_.open(page);
        return window_;
    }
    /// The page in front.
    desktop::Page& page() {
        for (auto* each : window_.findChildren<desktop::Page*>())
            if (each->isVisible()) return *each;
        throw std::runtime_error("no page is shown");
    }
    /// Shows a snapshot, and its applications once they are worked at and events are processed.
    void show(const Snapshot& snapshot) {
        records_.apps().take(snapshot);
        window_.refresh(snapshot, SampleMachine::known());
    }

    desktop::MainWindow& window() { return window_; }
    Monitor& monitor() { return monitor_; }
    History& records() { return records_; }

private:
    Prefs& prefs_;
    desktop::QtExecutor main_;
    SerialQueue queue_{"test.sampler"};
    SerialQueue aux_{"test.aux"};
    NoHelper helper_;
    LiveHistory history_;
    Monitor monitor_;
    History records_;
    desktop::MainWindow window_{monitor_, prefs_, history_, records_};
};

/// The widget that screen readers call `name`; a visible one where there are several.
template <class Widget>
Widget& named(const QWidget& window, const QString& name) {
    Widget* found = nullptr;
    for (auto* each : window.findChildren<Widget*>())
        if (each->accessibleName() == name && (!found || each->isVisible())) found = each;
    if (!found) throw std::runtime_error("nothing is called " + name.toStdString());
    return *found;
}

/// Answers a question with its button of that role.
void answer(QMessageBox& question, QMessageBox::ButtonRole role);

/// Runs a QApplication without a display around `run`, with settings of its own in a folder that goes at the
/// end.
int withApplication(int argc, char** argv, const std::function<int()>& run);

} // namespace quarn::testing
