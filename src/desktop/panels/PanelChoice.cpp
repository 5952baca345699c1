#include "desktop/panels/PanelChoice.h"

#include "HelperKit/Log.h"
#include "ui/settings/Prefs.h"

#include <algorithm>
#include <string>

namespace quarn::desktop {

std::vector<WidgetKind> openPanels(const Prefs& prefs) {
    const auto named = prefs.widgets.get();
    std::vector<WidgetKind> kinds;
    for (const WidgetKind kind : allWidgetKinds)
        if (std::find(named.begin(), named.end(), widgetKindId(kind)) != named.end()) kinds.push_back(kind);
    return kinds;
}

void choosePanel(Prefs& prefs, WidgetKind kind, PanelChoice choice) {
    auto kinds = prefs.widgets.get();
    const std::string id(widgetKindId(kind));
    const bool isOpen = std::find(kinds.begin(), kinds.end(), id) != kinds.end();
    if (isOpen == (choice == PanelChoice::open)) return;
    std::erase(kinds, id);
    if (choice == PanelChoice::open) kinds.push_back(id);
    storeSetting([&] { prefs.widgets.set(kinds); });
}

void storeSetting(const std::function<void()>& change) {
    try {
        change();
    } catch (const SettingsError& error) {
        log(std::string("a setting could not be stored: ") + error.what());
    }
}

} // namespace quarn::desktop
