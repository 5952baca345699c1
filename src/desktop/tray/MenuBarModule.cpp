#include "desktop/tray/MenuBarModule.h"

#include <QSystemTrayIcon>
namespace quarn::desktop {
MenuBarModule::MenuBarModule(WidgetKind kind) : kind_(kind), item_(new QSystemTrayIcon), buckets_(20) {}
MenuBarModule::~MenuBarModule() = default;
void MenuBarModule::applyLength(MenuBarStyle, double) {}
void MenuBarModule::applyDetailMode(bool) {}
void MenuBarModule::update(const Reading&, double) {}
} // namespace quarn::desktop
