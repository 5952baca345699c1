#pragma once

#include "ui/modules/WidgetKind.h"

#include <QWidget>

namespace quarn::desktop {

class WidgetPanel : public QWidget {
    Q_OBJECT
};

} // namespace quarn::desktop
