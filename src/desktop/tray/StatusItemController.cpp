#include "desktop/tray/StatusItemController.h"

#include "desktop/Icon.h"
#include "desktop/Text.h"
#include "desktop/tray/ModulePopoverController.h"
#include "desktop/tray/StatusMenu.h"
#include "ui/modules/LiveHistory.h"
#include "ui/settings/Prefs.h"

#include <QSystemTrayIcon>
#include <algorithm>

namespace quarn::desktop {

namespace {

std::vector<WidgetKind> chosenKinds(const Prefs& prefs) {
    std::vector<WidgetKind> kinds;
    for (const auto& id : prefs.menuBarModules())
        if (const auto kind = widgetKindFromId(id)) kinds.push_back(*kind);
    return kinds;
}

bool contains(const std::vector<WidgetKind>& kinds, WidgetKind kind) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

} // namespace

StatusItemController::StatusItemController(Prefs& prefs, const LiveHistory& history,
                                           StatusItemActions actions, std::function<bool()> hasTray)
    : prefs_(prefs),
      history_(history),
      actions_(std::move(actions)),
      hasTray_(std::move(hasTray)),
      menu_(std::make_unique<StatusMenu>(prefs, actions_)),
      popover_(std::make_unique<ModulePopoverController>(prefs, history, actions_)),
      known_(nothingKnown()) {
    connect(popover_.get(), &ModulePopoverController::shownChanged, this,
            &StatusItemController::panelsChanged);
    snapshot_.gpu.device = -1; // not known either
    constexpr int retryMs = 5000;
    retry_.setInterval(retryMs);
    retry_.setTimerType(Qt::VeryCoarseTimer);
    connect(&retry_, &QTimer::timeout, this, &StatusItemController::prefsChanged);
}

StatusItemController::~StatusItemController() = default;

Reading StatusItemController::reading() const {
    return {snapshot_, known_, readingStyle(prefs_), representativeTemperature(snapshot_)};
}

QMenu& StatusItemController::menu() { return *menu_; }

bool StatusItemController::hasTray() const { return hasTray_(); }

void StatusItemController::snapshot(const Snapshot& snapshot, const Known& known, double now) {
    snapshot_ = snapshot;
    known_ = known;
    const Reading reading = this->reading();
    for (const auto& [kind, module] : modules_) module->update(reading, now);
    popover_->update(reading);
    menu_->setInfo(
        say("CPU %1, memory %2")
            .arg(toQt(reading.headline(WidgetKind::cpu)), toQt(reading.headline(WidgetKind::memory))));
}

void StatusItemController::prefsChanged() {
    menu_->prefsChanged();
    if (!hasTray()) {
        retry_.start();
        return;
    }
    retry_.stop();
    const auto wanted = chosenKinds(prefs_);
    syncModules(wanted);
    showPlainItem(wanted.empty());
    const auto detailed = prefs_.menuBarDetailed.get();
    const auto style = static_cast<MenuBarStyle>(std::clamp<int64_t>(prefs_.menuBarStyle.get(), 0, 2));
    const Reading reading = this->reading();
    for (const WidgetKind kind : order_) {
        auto& module = *modules_.at(kind);
        module.applyLength(style, prefs_.menuBarSpanSeconds.get(), history_);
        module.applyDetailMode(
            std::find(detailed.begin(), detailed.end(), widgetKindId(kind)) != detailed.end(), history_);
        module.show(reading);
        module.item().show(); // with its icon: an item without one cannot be shown
    }
}

void StatusItemController::syncModules(std::vector<WidgetKind> wanted) {
    std::reverse(wanted.begin(),
                 wanted.end()); // trays grow to the left: the newest item is the first to be read
    std::erase_if(modules_, [&](const auto& entry) { return !contains(wanted, entry.first); });
    std::erase_if(order_, [&](WidgetKind kind) { return !contains(wanted, kind); });
    // From the first item on that stands elsewhere now, all follow anew.
    const auto kept = std::mismatch(order_.begin(), order_.end(), wanted.begin(), wanted.end());
    for (auto stale = kept.first; stale != order_.end(); ++stale) modules_[*stale]->renewItem();
    for (auto next = kept.second; next != wanted.end(); ++next)
        if (!modules_.contains(*next)) addModule(*next);
    order_ = std::move(wanted);
}

void StatusItemController::addModule(WidgetKind kind) {
    auto module = std::make_unique<MenuBarModule>(kind);
    module->item().setContextMenu(menu_.get());
    connect(module.get(), &MenuBarModule::clicked, this, [this, kind] { buttonClicked(kind); });
    connect(module.get(), &MenuBarModule::middleClicked, this, [this] { actions_.openWindow(); });
    modules_[kind] = std::move(module);
}

void StatusItemController::showPlainItem(bool shown) {
    if (!shown) return plain_.reset();
    if (plain_) return;
    plain_ = std::make_unique<QSystemTrayIcon>(icon("quarn"));
    plain_->setToolTip("Quarn");
    plain_->setContextMenu(menu_.get());
    connect(plain_.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::MiddleClick)
                    actions_.openWindow();
            });
    plain_->show();
}

void StatusItemController::buttonClicked(WidgetKind kind) {
    const auto found = modules_.find(kind);
    if (found == modules_.end()) return;
    popover_->toggle(kind, found->second->isDetailed() ? PopoverDetail::full : PopoverDetail::brief,
                     found->second->item().geometry(), reading());
}

void StatusItemController::panelsChanged(bool shown) { Q_EMIT panelShown(shown); }

} // namespace quarn::desktop
