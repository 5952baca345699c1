#include "desktop/panels/WidgetManager.h"

#include "desktop/Theme.h"
#include "desktop/panels/PanelChoice.h"
#include "desktop/panels/WidgetPanel.h"
#include "ui/modules/LiveHistory.h"
#include "ui/settings/Prefs.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

namespace quarn::desktop {

WidgetManager::WidgetManager(Prefs& prefs, const LiveHistory& history)
    : prefs_(prefs), history_(history), known_(nothingKnown()) {
    snapshot_.gpu.device = -1; // not known either
    connect(&Theme::current(), &Theme::changed, this, [this] {
        for (const auto& [kind, panel] : panels_) panel->applyTheme();
    });
    const auto watch = [this](const QScreen* screen) {
        connect(screen, &QScreen::availableGeometryChanged, this, &WidgetManager::screensChanged);
        screensChanged();
    };
    for (const QScreen* screen : QGuiApplication::screens()) watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &WidgetManager::screensChanged);
}

WidgetManager::~WidgetManager() { saveAll(); }

void WidgetManager::applyPrefs() {
    const auto wanted = openPanels(prefs_);
    std::vector<WidgetKind> stale;
    for (const auto& [kind, panel] : panels_)
        if (std::find(wanted.begin(), wanted.end(), kind) == wanted.end()) stale.push_back(kind);
    for (const WidgetKind kind : stale) hide(kind);
    for (const WidgetKind kind : wanted) show(kind);
    const PanelStyle style{prefs_.widgetOpacity.get(), prefs_.widgetsOnTop.get(), prefs_.flashChanges.get()};
    for (const auto& [kind, panel] : panels_) {
        panel->apply(style);
        panel->setVisible(true);
    }
    if (!panels_.empty()) snapshot(snapshot_, known_); // units may have changed too
}

void WidgetManager::setEnabled(WidgetKind kind, bool enabled) {
    choosePanel(prefs_, kind, enabled ? PanelChoice::open : PanelChoice::closed);
    applyPrefs();
}

void WidgetManager::saveAll() {
    for (const auto& [kind, panel] : panels_) panel->saveFrame();
}

void WidgetManager::snapshot(const Snapshot& snapshot, const Known& known) {
    snapshot_ = snapshot;
    known_ = known;
    if (panels_.empty()) return;
    const Reading reading{snapshot_, known_, readingStyle(prefs_), representativeTemperature(snapshot_)};
    const double span = prefs_.menuBarSpanSeconds.get();
    for (const auto& [kind, panel] : panels_) panel->update(reading, history_, span);
}

void WidgetManager::show(WidgetKind kind) {
    auto& panel = panels_[kind];
    if (panel) return;
    QList<QRect> taken;
    for (const auto& [other, open] : panels_)
        if (open) taken << open->geometry();
    panel = std::make_unique<WidgetPanel>(kind);
    // Later: the panel is still in its own click.
    connect(
        panel.get(), &WidgetPanel::dismissed, this, [this, kind] { setEnabled(kind, false); },
        Qt::QueuedConnection);
    if (!panel->restoreFrame()) panel->cascade(taken);
}

void WidgetManager::hide(WidgetKind kind) {
    const auto found = panels_.find(kind);
    if (found == panels_.end()) return;
    found->second->saveFrame();
    panels_.erase(found);
}

void WidgetManager::screensChanged() {
    for (const auto& [kind, panel] : panels_)
        if (!panel->restoreFrame()) panel->keepVisible();
}

} // namespace quarn::desktop
