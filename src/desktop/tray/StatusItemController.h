#pragma once

#include "desktop/tray/MenuBarModule.h"
#include "desktop/tray/Tray.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <map>
#include <memory>
#include <vector>

class QMenu;
class QSystemTrayIcon;

namespace quarn {
class LiveHistory;
class Prefs;
} // namespace quarn

namespace quarn::desktop {

class ModulePopoverController;
class StatusMenu;

/// What status items lead to.
struct StatusItemActions {
    std::function<void()> openWindow;
    std::function<void(const QString& page)> openPage; ///< the window with this page
};

/// The status items: one module for each kind that the settings choose, in their order, or else one plain
/// item of the application. Without a tray there are none; it is looked for again every few seconds, because
/// applications may start before the desktop's panel does.
class StatusItemController : public QObject {
    Q_OBJECT
public:
    StatusItemController(Prefs& prefs, const LiveHistory& history, StatusItemActions actions,
                         std::function<bool()> hasTray = desktop::trayIsThere);
    ~StatusItemController() override;

    bool hasTray() const;
    bool isWaitingForTray() const { return retry_.isActive(); }
    /// Updates every module and the open popover; `now` in steady seconds.
    void snapshot(const Snapshot& snapshot, const Known& known, double now);
    /// Adds, removes and restyles modules to match the settings.
    void prefsChanged();
    /// Opens the popover of the module, or closes it.
    void buttonClicked(WidgetKind kind);

    const std::map<WidgetKind, std::unique_ptr<MenuBarModule>>& modules() const { return modules_; }
    /// The plain item of the application; nullptr while there are modules.
    QSystemTrayIcon* plainItem() { return plain_.get(); }
    QMenu& menu();

Q_SIGNALS:
    /// The popover was opened or closed: the engine samples as for a window meanwhile.
    void panelShown(bool shown);

private:
    Reading reading() const;
    void panelsChanged(bool shown);
    void syncModules(std::vector<WidgetKind> wanted);
    void addModule(WidgetKind kind);
    void showPlainItem(bool shown);

    Prefs& prefs_;
    const LiveHistory& history_;
    StatusItemActions actions_;
    std::function<bool()> hasTray_;
    std::unique_ptr<StatusMenu> menu_;
    std::unique_ptr<ModulePopoverController> popover_;
    std::map<WidgetKind, std::unique_ptr<MenuBarModule>> modules_;
    std::vector<WidgetKind> order_; ///< in which the modules entered the tray
    std::unique_ptr<QSystemTrayIcon> plain_;
    QTimer retry_;      ///< runs while there is no tray
    Snapshot snapshot_; ///< the last one, for modules that are added between two
    Known known_;
};

} // namespace quarn::desktop
