#pragma once

#include "desktop/tray/MenuBarModule.h"

#include <QIcon>

namespace quarn::desktop {

/// The icon of a status item. A tray is a square of 16 to 32 pixels, so it is drawn for the very size that
/// the tray asks for: the figure as large as fits, over the graph where both are shown. A faint edge keeps
/// figures readable on a panel of another colour than was expected.
QIcon statusIcon(const MenuBarModule::Rendering& rendering);

} // namespace quarn::desktop
