#pragma once

#include <QPlainTextEdit>

namespace quarn::desktop {

/// A text of any length that is shown whole: wrapped anywhere, selectable, as high as it needs up to
/// `mostLines`, where it scrolls. For paths and command lines, which have no blanks to break at.
class WrappedText : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit WrappedText(const QString& accessibleName, QWidget* parent = nullptr);
    void show(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {80, sizeHint().height()}; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    static constexpr int mostLines = 12;
};

} // namespace quarn::desktop
