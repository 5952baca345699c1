#include "desktop/Desktop.h"

#include "desktop/MainWindow.h"
#include "desktop/Theme.h"
#include "desktop/panels/WidgetManager.h"
#include "desktop/tray/StatusItemController.h"
#include "ui/settings/Prefs.h"

#include <QApplication>

namespace quarn::desktop {

Desktop::Desktop(Prefs& prefs, sysinfo::SystemRoot root)
    : prefs_(prefs),
      root_(std::move(root)),
      queue_("com.kelmora.quarn.sampler", QualityOfService::userInitiated),
      aux_("com.kelmora.quarn.aux"),
      monitor_(
          {.queue = queue_, .aux = aux_, .main = main_, .prefs = prefs_, .helper = helper_, .root = root_}),
      profile_(prefs.samplingProfile.get()) {
    records_.emplace(History::Setup{
        .monitor = monitor_, .prefs = prefs_, .main = main_, .restored = [this] { takeRestored(); }});
    window_ = std::make_unique<MainWindow>(monitor_, prefs_, history_, *records_);
    const auto openPage = [this](const QString& page) {
        showWindow();
        window_->open(page);
    };
    statusItems_ = std::make_unique<StatusItemController>(
        prefs_, history_, StatusItemActions{[this] { showWindow(); }, openPage});
    panels_ = std::make_unique<WidgetManager>(prefs_, history_);
    connect(window_.get(), &MainWindow::visibilityChanged, this, [this](bool visible) {
        monitor_.setBackground(!visible);
        if (visible && !sensors_) sensors_.emplace(monitor_, PowerSplit::wanted);
        if (!visible) sensors_.reset();
    });
    connect(window_.get(), &MainWindow::closed, this, [this] { windowClosed(); });
    connect(statusItems_.get(), &StatusItemController::panelShown, this,
            [this](bool shown) { monitor_.setPanelOpen(shown); });
    monitor_.observe([this](const Snapshot& snapshot) { take(snapshot); });
    subscription_ = prefs_.d.observe(main_, [this] { settingsChanged(); });
}

Desktop::~Desktop() {
    subscription_.reset();
    window_.reset(); // its pages may still be reading with the monitor
    sensors_.reset();
    records_.reset();
}

void Desktop::start() {
    monitor_.setBackground(!prefs_.openWindowAtLaunch.get());
    monitor_.start();
    statusItems_->prefsChanged();
    panels_->applyPrefs();
    // Without a tray nobody could reach a hidden window.
    if (prefs_.openWindowAtLaunch.get() || !statusItems_->hasTray()) showWindow();
}

void Desktop::followThemeSetting() {
    followsTheme_ = true;
    Theme::current().choose(prefs_.appTheme.get());
}

void Desktop::showWindow() { window_->present(); }

void Desktop::save() {
    if (records_) records_->save();
}

void Desktop::take(const Snapshot& snapshot) {
    const Known known = knownIn(snapshot, root_);
    const double now = steadySeconds();
    history_.add(snapshot, known, now, monitor_.plan().tick);
    window_->refresh(snapshot, known);
    statusItems_->snapshot(snapshot, known, now);
    panels_->snapshot(snapshot, known);
    Q_EMIT refreshed();
}

/// Graphs begin with what the last run saved.
void Desktop::takeRestored() {
    history_.restore(records_->live().samples(), records_->live().breaks(), monitor_.hardware().memTotal,
                     {std::chrono::system_clock::now(), steadySeconds()});
}

void Desktop::settingsChanged() {
    if (const auto profile = prefs_.samplingProfile.get(); profile != profile_) {
        profile_ = profile;
        monitor_.setProfile(profileFromText(profile).value_or(SamplingProfile::normal));
        monitor_.start();
    }
    if (followsTheme_) followThemeSetting();
    window_->settingsChanged();
    statusItems_->prefsChanged();
    panels_->applyPrefs();
}

void Desktop::windowClosed() {
    if (!prefs_.keepRunning.get() || !statusItems_->hasTray()) QApplication::quit();
}

} // namespace quarn::desktop
