#pragma once

#include <QString>

class QToolButton;

namespace quarn::desktop {

/// A cross that closes or dismisses what it stands on. `name` is for those who do not see it.
QToolButton* closeButton(const QString& toolTip, const QString& name);

} // namespace quarn::desktop
