#include "desktop/widgets/WrappedText.h"

#include <QAbstractTextDocumentLayout>
#include <QTextDocument>
#include <algorithm>

namespace quarn::desktop {

WrappedText::WrappedText(const QString& accessibleName, QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    setAccessibleName(accessibleName);
    setFrameShape(QFrame::NoFrame);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setTabChangesFocus(true);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            [this] { updateGeometry(); });
}

void WrappedText::show(const QString& text) {
    if (toPlainText() != text) setPlainText(text);
}

QSize WrappedText::sizeHint() const {
    // The document counts its height in lines.
    const int lines = std::clamp(static_cast<int>(document()->size().height()), 1, mostLines);
    return {200, lines * fontMetrics().lineSpacing() + 2};
}

void WrappedText::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    updateGeometry();
}

} // namespace quarn::desktop
