#pragma once

#include <QColor>
#include <QLabel>
#include <QTimer>

namespace quarn::desktop {

/// A figure that is tinted for a moment when it changes.
class FlashLabel : public QLabel {
    Q_OBJECT
public:
    /// How far the tint goes beyond the figure, which stands as far from the left.
    static constexpr int bleed = 4;

    explicit FlashLabel(const QColor& tint, QWidget* parent = nullptr);

    void setTint(const QColor& tint) { tint_ = tint; }
    void setFlashes(bool flashes) { flashes_ = flashes; }
    /// Shows the text; touches nothing when it is the same. The first text does not flash.
    void show(const QString& text);
    bool isFlashing() const { return fading_.isActive(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor tint_;
    bool flashes_ = false;
    QTimer fading_; ///< one step instead of an animation: two paints a change are enough
};

} // namespace quarn::desktop
