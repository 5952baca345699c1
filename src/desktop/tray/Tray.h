#pragma once

namespace quarn::desktop {

/// Whether the desktop has a tray for status items now. Asks the display and the session's bus; a fraction of
/// a millisecond, and at worst a fifth of a second.
bool trayIsThere();

} // namespace quarn::desktop
