#pragma once

class QWidget;

namespace quarn::desktop {

/// Keeps a window out of taskbars and pagers; to be called each time before it is shown. Without an X11
/// display nothing happens.
void keepOutOfTaskbar(QWidget& window);

} // namespace quarn::desktop
