#pragma once

#include "ui/modules/WidgetKind.h"

#include <QTimer>
#include <QWidget>
#include <optional>

class QToolButton;

namespace quarn {
class LiveHistory;
}

namespace quarn::desktop {

class ReadingView;

/// How panels look, from the settings.
struct PanelStyle {
    double opacity = 0.92; ///< while the pointer is elsewhere
    bool onTop = true;
    bool flashes = true;

    bool operator==(const PanelStyle&) const = default;
};

/// A small floating window with one reading. It is moved by its background and remembers where it was left; a
/// cross in its corner closes it for good.
class WidgetPanel : public QWidget {
    Q_OBJECT
public:
    explicit WidgetPanel(WidgetKind kind);
    ~WidgetPanel() override;

    WidgetKind kind() const { return kind_; }
    bool hovered() const { return hovered_; }

    void update(const Reading& reading, const LiveHistory& history, double span);
    void apply(const PanelStyle& style);
    void applyTheme();

    /// Goes to where the user left it, or as near as the screens of now allow; false when there is no such
    /// place.
    bool restoreFrame();
    void saveFrame();
    /// Moves as little as needed to be on a screen.
    void keepVisible();
    /// Goes to a place that no frame of `taken` covers.
    void cascade(const QList<QRect>& taken);

Q_SIGNALS:
    /// The user closed it with the cross.
    void dismissed();

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setHovered(bool hovered);
    void place(const QRect& frame);
    void movedByDesktop();

    WidgetKind kind_;
    ReadingView* view_;
    QToolButton* closeButton_;
    std::optional<PanelStyle> style_;
    bool hovered_ = false;
    bool placed_ = false;        ///< has a place of its own
    QPoint place_;               ///< which is this
    std::optional<QPoint> grip_; ///< where the pointer holds it while it is dragged
    QTimer saveSoon_;            ///< after the desktop moved it
};

} // namespace quarn::desktop
