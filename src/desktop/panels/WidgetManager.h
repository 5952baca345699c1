#pragma once

#include "ui/modules/WidgetKind.h"

#include <QObject>
#include <map>
#include <memory>

namespace quarn {
class LiveHistory;
class Prefs;
} // namespace quarn

namespace quarn::desktop {

class WidgetPanel;

/// The floating panels: those of the kinds in the setting `widgets` are open.
class WidgetManager : public QObject {
    Q_OBJECT
public:
    WidgetManager(Prefs& prefs, const LiveHistory& history);
    ~WidgetManager() override;

    /// Opens and closes panels to match the settings, and applies opacity and staying on top.
    void applyPrefs();
    /// Adds the kind to the setting, or removes it.
    void setEnabled(WidgetKind kind, bool enabled);
    /// Stores the frames of all open panels.
    void saveAll();
    void snapshot(const Snapshot& snapshot, const Known& known);

    const std::map<WidgetKind, std::unique_ptr<WidgetPanel>>& panels() const { return panels_; }

private:
    void show(WidgetKind kind);
    void hide(WidgetKind kind);
    void screensChanged();

    Prefs& prefs_;
    const LiveHistory& history_;
    std::map<WidgetKind, std::unique_ptr<WidgetPanel>> panels_;
    Snapshot snapshot_; ///< the last one, for panels that are opened between two
    Known known_;
};

} // namespace quarn::desktop
