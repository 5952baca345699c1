#include "desktop/widgets/CloseButton.h"

#include "desktop/Icon.h"

#include <QToolButton>

namespace quarn::desktop {

QToolButton* closeButton(const QString& toolTip, const QString& name) {
    auto* close = new QToolButton;
    close->setIcon(icon("close"));
    close->setAutoRaise(true);
    close->setToolTip(toolTip);
    close->setAccessibleName(name);
    return close;
}

} // namespace quarn::desktop
