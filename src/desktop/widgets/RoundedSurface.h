#pragma once

class QWidget;

namespace quarn::desktop {

/// Paints a window that has no frame of the desktop's: the theme's surface with round corners and a hair line
/// around it. For its `paintEvent`.
void paintRoundedSurface(QWidget& window);

} // namespace quarn::desktop
