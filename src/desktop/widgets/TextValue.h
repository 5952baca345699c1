#pragma once

#include <QString>

class QWidget;

namespace quarn::desktop {

/// Gives a widget that only paints a text that assistive technology reads as its value. Called first in the
/// widget's constructor, then whenever the value changes.
void setTextValue(QWidget* widget, const QString& text);

} // namespace quarn::desktop
