#pragma once

#include "desktop/tray/ModulePopover.h"

#include <QElapsedTimer>
#include <QObject>
#include <memory>
#include <optional>

namespace quarn {
class Prefs;
}

namespace quarn::desktop {

struct StatusItemActions;

/// The popover of the status items, of which one at a time is open: where it stands, what it shows, when it
/// goes.
class ModulePopoverController : public QObject {
    Q_OBJECT
public:
    ModulePopoverController(Prefs& prefs, const LiveHistory& history, const StatusItemActions& actions);
    ~ModulePopoverController() override;

    /// Opens the popover of a kind beside its item, or at the cursor where the tray does not tell the item's
    /// place (`item` empty). A click on the item of the open one only closes it.
    void toggle(WidgetKind kind, PopoverDetail detail, const QRect& item, const Reading& reading);
    void close();
    /// Brings an open popover up to date.
    void update(const Reading& reading);
    const ModulePopover* popover() const { return popover_.get(); }

Q_SIGNALS:
    void shownChanged(bool shown);

private:
    struct Forget {
        void operator()(QObject* object) const { object->deleteLater(); }
    };
    void popoverClosed();

    Prefs& prefs_;
    const LiveHistory& history_;
    const StatusItemActions& actions_;
    std::unique_ptr<ModulePopover, Forget> popover_; ///< may be closing under its own event
    std::optional<WidgetKind> lastClosed_;
    QElapsedTimer sinceClosed_;
};

} // namespace quarn::desktop
