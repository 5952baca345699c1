#include "desktop/tray/StatusItemController.h"

#include <QMenu>
#include <QSystemTrayIcon>
namespace quarn::desktop {
StatusItemController::StatusItemController(Prefs& prefs, std::function<void()> showWindow)
    : prefs_(prefs), showWindow_(std::move(showWindow)) {}
StatusItemController::~StatusItemController() = default;
bool StatusItemController::hasTray() const { return QSystemTrayIcon::isSystemTrayAvailable(); }
void StatusItemController::snapshot(const Snapshot&, const Known&) {}
void StatusItemController::prefsChanged() {}
void StatusItemController::panelsChanged() {}
void StatusItemController::buttonClicked(WidgetKind) {}
} // namespace quarn::desktop
