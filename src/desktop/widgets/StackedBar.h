#pragma once

#include "ui/modules/WidgetKind.h"

#include <QWidget>
#include <vector>

namespace quarn::desktop {

/// One bar made of parts in shades of one hue, with a faint gap between them; what they leave is empty.
class StackedBar : public QWidget {
    Q_OBJECT
public:
    struct Part {
        double share = 0;    ///< of the whole bar, 0 to 1
        double strength = 1; ///< as in Theme::shade
        QString tooltip;
        bool operator==(const Part&) const = default;
    };

    explicit StackedBar(WidgetKind kind, QWidget* parent = nullptr);
    /// Repaints only when parts differ. `spoken` is what a screen reader says of them.
    void show(const std::vector<Part>& parts, const QString& spoken);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    std::vector<QRect> places() const;

    WidgetKind kind_;
    std::vector<Part> parts_;
};

} // namespace quarn::desktop
