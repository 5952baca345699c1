#include "desktop/widgets/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

namespace quarn::desktop {

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void ElidedLabel::show(const QString& text, const QString& tooltip) {
    if (text != this->text()) setText(text);
    // A tooltip with markup in it would be shown as rich text.
    const QString tip = (tooltip.isEmpty() ? text : tooltip).toHtmlEscaped();
    if (tip != toolTip()) setToolTip(tip);
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(),
                          shown, foregroundRole());
}

} // namespace quarn::desktop
