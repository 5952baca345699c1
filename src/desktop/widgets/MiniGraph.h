#pragma once

#include "ui/modules/WidgetKind.h"

#include <QWidget>
#include <vector>

namespace quarn::desktop {

/// A graph without axes: columns, each the peak of its slice, newest at the right. NaN is a gap.
class MiniGraph : public QWidget {
    Q_OBJECT
public:
    /// `fullScale` 0: the columns fill the height of the next 1-2-5 step above the largest.
    explicit MiniGraph(WidgetKind kind, double fullScale = 0, QWidget* parent = nullptr);
    /// Repaints only when the values differ.
    void setValues(const std::vector<double>& values);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    WidgetKind kind_;
    double fullScale_;
    std::vector<double> values_;
};

} // namespace quarn::desktop
