#include "desktop/panels/WidgetManager.h"

#include "desktop/panels/WidgetPanel.h"
namespace quarn::desktop {
WidgetManager::WidgetManager(Prefs& prefs) : prefs_(prefs) {}
WidgetManager::~WidgetManager() = default;
void WidgetManager::applyPrefs() {}
void WidgetManager::setEnabled(WidgetKind, bool) {}
void WidgetManager::saveAll() {}
void WidgetManager::snapshot(const Snapshot&, const Known&) {}
void WidgetManager::show(WidgetKind) {}
void WidgetManager::hide(WidgetKind) {}
} // namespace quarn::desktop
