#pragma once

#include "ui/modules/WidgetKind.h"

#include <functional>
#include <vector>

namespace quarn {
class Prefs;
}

namespace quarn::desktop {

enum class PanelChoice { closed, open };

/// The kinds that the setting `widgets` names, each once, in the order of their kinds.
std::vector<WidgetKind> openPanels(const Prefs& prefs);
/// Adds the kind to that setting or removes it.
void choosePanel(Prefs& prefs, WidgetKind kind, PanelChoice choice);

/// Runs a change of settings that a click asked for. One that cannot be written is logged: the click then has
/// no effect, and what shows the setting keeps showing the stored one.
void storeSetting(const std::function<void()>& change);

} // namespace quarn::desktop
