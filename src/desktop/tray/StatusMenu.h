#pragma once

#include "ui/modules/WidgetKind.h"

#include <QMenu>
#include <functional>
#include <map>

class QAction;
class QActionGroup;

namespace quarn {
class Prefs;
}

namespace quarn::desktop {

struct StatusItemActions;

/// The menu of the status items: what the machine does, the window, sampling profile, floating panels,
/// settings, quit. Ticks and marks follow the settings.
class StatusMenu : public QMenu {
    Q_OBJECT
public:
    StatusMenu(Prefs& prefs, const StatusItemActions& actions);

    /// What the informational entry says. It changes only while the menu is open: a menu in another process
    /// (the desktop's panel) would be told of every change.
    void setInfo(const QString& text);
    void prefsChanged();

private:
    void addProfiles();
    void addPanels();

    Prefs& prefs_;
    QAction* info_;
    QString infoText_;
    bool open_ = false;
    QActionGroup* profiles_ = nullptr;
    std::map<WidgetKind, QAction*> panels_;
};

} // namespace quarn::desktop
