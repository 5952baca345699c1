#pragma once

#include "desktop/Page.h"
#include "monitor/AppWatch.h"

#include <QMainWindow>
#include <map>
#include <optional>

namespace quarn {
class History;
}

class QLineEdit;
class QStackedWidget;

namespace quarn::desktop {

class Sidebar;

/// The main window: sidebar, search and the shown page. Pages are made when they are first shown, and only
/// the shown one follows the snapshots.
class MainWindow : public QMainWindow, public Navigator {
    Q_OBJECT
public:
    MainWindow(Monitor& monitor, Prefs& prefs, const LiveHistory& history, History& records);
    ~MainWindow() override;

    /// Shows what is new on the current page; nothing while the window is hidden.
    void refresh(const Snapshot& snapshot, const Known& known);
    void open(const QString& page, const QString& search = {}) override;
    /// Shows, unminimises and raises the window.
    void present();
    /// Follows changed settings.
    void settingsChanged();
    QString currentPage() const { return current_; }

Q_SIGNALS:
    /// The window was shown or hidden; the engine samples less while it is hidden.
    void visibilityChanged(bool visible);
    /// The user closed the window.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    Page* page(const QString& id);
    QString firstPage() const;
    void addShortcuts();
    void showCurrent();
    void showApplications();
    void followApplications();

    Prefs& prefs_;
    PageContext context_;
    Sidebar* sidebar_;
    QLineEdit* search_;
    QStackedWidget* stack_;
    std::map<QString, Page*> pages_;
    QString current_;
    Snapshot snapshot_; ///< the last one, for pages that are opened between two
    Known known_;
    std::optional<AppListRetention> applications_; ///< while a page that needs them is shown
};

} // namespace quarn::desktop
