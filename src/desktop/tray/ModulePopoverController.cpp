#include "desktop/tray/ModulePopoverController.h"

#include "desktop/panels/Placement.h"
#include "desktop/tray/StatusItemController.h"
#include "ui/modules/LiveHistory.h"
#include "ui/settings/Prefs.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace quarn::desktop {

ModulePopoverController::ModulePopoverController(Prefs& prefs, const LiveHistory& history,
                                                 const StatusItemActions& actions)
    : prefs_(prefs), history_(history), actions_(actions) {}

ModulePopoverController::~ModulePopoverController() {
    if (popover_) popover_->disconnect(this);
}

void ModulePopoverController::toggle(WidgetKind kind, PopoverDetail detail, const QRect& item,
                                     const Reading& reading) {
    // The click on the item took the focus from its popover, which closed it already.
    constexpr qint64 sameClickMs = 300;
    const bool justClosed =
        lastClosed_ == kind && sinceClosed_.isValid() && sinceClosed_.elapsed() < sameClickMs;
    const bool wasOpen = popover_ && popover_->kind() == kind;
    close();
    if (wasOpen || justClosed) {
        lastClosed_.reset();
        return;
    }
    popover_.reset(new ModulePopover(kind, detail));
    connect(popover_.get(), &ModulePopover::closed, this, &ModulePopoverController::popoverClosed);
    connect(popover_.get(), &ModulePopover::openQuarn, this, [this] {
        close();
        actions_.openWindow();
    });
    update(reading);
    const QRect anchor = item.isEmpty() ? QRect(QCursor::pos(), QSize(1, 1)) : item;
    const QScreen* screen = QGuiApplication::screenAt(anchor.center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (screen) popover_->move(besideAnchor(popover_->size(), anchor, screen->availableGeometry()));
    popover_->show();
    popover_->raise();
    popover_->activateWindow();
    Q_EMIT shownChanged(true);
}

void ModulePopoverController::close() {
    if (popover_) popover_->close();
}

void ModulePopoverController::popoverClosed() {
    if (!popover_) return;
    lastClosed_ = popover_->kind();
    sinceClosed_.start();
    popover_.reset();
    Q_EMIT shownChanged(false);
}

void ModulePopoverController::update(const Reading& reading) {
    if (popover_) popover_->update(reading, history_, prefs_.menuBarSpanSeconds.get());
}

} // namespace quarn::desktop
