#pragma once

#include "HelperKit/SerialQueue.h"
#include "desktop/QtExecutor.h"
#include "history/History.h"
#include "monitor/Monitor.h"
#include "ui/modules/LiveHistory.h"
#include "ui/settings/SettingsStore.h"

#include <QObject>
#include <memory>
#include <optional>

namespace quarn::desktop {

class MainWindow;
class StatusItemController;
class WidgetManager;

/// The running application: the engine on its queues, and what shows its snapshots. Lives on the main thread,
/// which never waits for the engine.
class Desktop : public QObject {
    Q_OBJECT
public:
    explicit Desktop(Prefs& prefs, sysinfo::SystemRoot root = sysinfo::SystemRoot::host());
    ~Desktop() override;

    /// Starts sampling, the status items and panels, and shows the window unless the settings say not to.
    void start();
    /// Has the colours of the setting `appTheme` from now on.
    void followThemeSetting();
    void showWindow();
    /// Writes the history, which the destructor does otherwise.
    void save();
    MainWindow& window() { return *window_; }

Q_SIGNALS:
    /// Everything that is shown has followed the latest snapshot.
    void refreshed();

private:
    void take(const Snapshot& snapshot);
    void takeRestored();
    void settingsChanged();
    void windowClosed();

    Prefs& prefs_;
    sysinfo::SystemRoot root_;
    QtExecutor main_;
    SerialQueue queue_;
    SerialQueue aux_;
    NoHelper helper_;
    LiveHistory history_;
    std::unique_ptr<MainWindow> window_;
    std::unique_ptr<StatusItemController> statusItems_;
    std::unique_ptr<WidgetManager> panels_;
    Monitor monitor_; ///< after what its observers show into, so that it ends first
    std::optional<History> records_;
    std::optional<SensorRetention> sensors_; ///< while the window is open
    SettingsStore::Subscription subscription_;
    std::string profile_;
    bool followsTheme_ = false;
};

} // namespace quarn::desktop
