#pragma once

#include "desktop/tray/MenuBarModule.h"

#include <QObject>
#include <functional>
#include <map>
#include <memory>

class QAction;
class QMenu;

namespace quarn {
class Prefs;
}

namespace quarn::desktop {

/// The status items: one module for each kind that the settings choose, in their order, drawn into the
/// desktop's tray. Without a tray there are none; it is looked for again when the desktop starts one.
class StatusItemController : public QObject {
    Q_OBJECT
public:
    StatusItemController(Prefs& prefs, std::function<void()> showWindow);
    ~StatusItemController() override;

    bool hasTray() const;
    /// Updates every module.
    void snapshot(const Snapshot& snapshot, const Known& known);
    /// Adds, removes and restyles modules to match the settings.
    void prefsChanged();

Q_SIGNALS:
    /// The first popover opened, or the last one closed: the engine samples as for a window meanwhile.
    void panelShown(bool shown);

private:
    void panelsChanged();
    void buttonClicked(WidgetKind kind);

    Prefs& prefs_;
    std::function<void()> showWindow_;
    std::map<WidgetKind, std::unique_ptr<MenuBarModule>> modules_;
    std::unique_ptr<QMenu> menu_;
    QAction* info_ = nullptr; ///< the informational entry
};

} // namespace quarn::desktop
