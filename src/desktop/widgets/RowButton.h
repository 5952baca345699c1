#pragma once

#include <QAbstractButton>

namespace quarn::desktop {

/// A row of a list as a button: Space, Return or a click presses it; hover and focus are plain to see. What
/// it shows is painted by the row itself.
class RowButton : public QAbstractButton {
    Q_OBJECT
public:
    explicit RowButton(QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    /// Paints what lies behind the row.
    void paintBackground(QPainter& painter) const;
};

} // namespace quarn::desktop
