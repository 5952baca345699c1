#include "desktop/tray/StatusMenu.h"

#include "desktop/Text.h"
#include "desktop/panels/PanelChoice.h"
#include "desktop/tray/StatusItemController.h"
#include "monitor/SamplingPlan.h"
#include "ui/settings/Prefs.h"

#include <QActionGroup>
#include <QApplication>

namespace quarn::desktop {

StatusMenu::StatusMenu(Prefs& prefs, const StatusItemActions& actions)
    : prefs_(prefs), info_(addAction(say("Quarn watches this computer"))) {
    info_->setEnabled(false);
    addSeparator();
    setDefaultAction(addAction(say("Open Quarn"), this, [open = actions.openWindow] { open(); }));
    addProfiles();
    addPanels();
    addSeparator();
    addAction(say("Settings…"), this, [open = actions.openPage] { open("settings"); });
    addAction(say("Quit Quarn"), this, [] { QApplication::quit(); });
    connect(this, &QMenu::aboutToShow, this, [this] {
        open_ = true;
        if (!infoText_.isEmpty()) info_->setText(infoText_);
    });
    connect(this, &QMenu::aboutToHide, this, [this] { open_ = false; });
    prefsChanged();
}

void StatusMenu::addProfiles() {
    auto* menu = addMenu(say("Sampling profile"));
    profiles_ = new QActionGroup(this);
    for (const auto profile :
         {SamplingProfile::diagnostic, SamplingProfile::normal, SamplingProfile::powerSaving}) {
        auto* action = menu->addAction(say(std::string(displayName(profile)).c_str()));
        action->setCheckable(true);
        action->setData(toQt(rawText(profile)));
        profiles_->addAction(action);
    }
    connect(profiles_, &QActionGroup::triggered, this, [this](const QAction* action) {
        storeSetting([&] { prefs_.samplingProfile.set(action->data().toString().toStdString()); });
        prefsChanged(); // the mark is at what is stored, even where that failed
    });
}

void StatusMenu::addPanels() {
    auto* menu = addMenu(say("Panels"));
    for (const WidgetKind kind : allWidgetKinds) {
        auto* action = menu->addAction(say(Reading::title(kind).c_str()));
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, kind](bool on) {
            choosePanel(prefs_, kind, on ? PanelChoice::open : PanelChoice::closed);
            prefsChanged();
        });
        panels_[kind] = action;
    }
}

void StatusMenu::setInfo(const QString& text) {
    infoText_ = text;
    if (open_ && info_->text() != text) info_->setText(text);
}

void StatusMenu::prefsChanged() {
    const QString profile = toQt(prefs_.samplingProfile.get());
    for (auto* action : profiles_->actions())
        if (action->data().toString() == profile) action->setChecked(true);
    const auto open = openPanels(prefs_);
    for (const auto& [kind, action] : panels_)
        action->setChecked(std::find(open.begin(), open.end(), kind) != open.end());
}

} // namespace quarn::desktop
