#include "desktop/widgets/MiniGraph.h"

#include "desktop/Theme.h"
#include "ui/modules/Scale.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace quarn::desktop {

MiniGraph::MiniGraph(WidgetKind kind, double fullScale, QWidget* parent)
    : QWidget(parent), kind_(kind), fullScale_(fullScale) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void MiniGraph::setValues(const std::vector<double>& values) {
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    if (std::equal(values.begin(), values.end(), values_.begin(), values_.end(), same)) return;
    values_ = values;
    update();
}

QSize MiniGraph::sizeHint() const { return {120, 28}; }

void MiniGraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto& theme = Theme::current();
    painter.fillRect(QRect(0, height() - 1, width(), 1), theme.line());
    if (values_.empty()) return;
    double top = fullScale_;
    if (top <= 0) {
        double largest = 0;
        for (const double value : values_)
            if (value > largest) largest = value;
        top = niceTop(largest);
    }
    const double step = static_cast<double>(width()) / static_cast<double>(values_.size());
    const QColor color = theme.kind(kind_);
    for (size_t i = 0; i < values_.size(); ++i) {
        if (!(values_[i] > 0)) continue;
        const double share = std::min(values_[i] / top, 1.0);
        const int columnHeight = std::max(1, static_cast<int>(std::lround(share * height())));
        const int left = static_cast<int>(std::floor(static_cast<double>(i) * step));
        const int right = static_cast<int>(std::floor(static_cast<double>(i + 1) * step));
        painter.fillRect(QRect(left, height() - columnHeight, std::max(1, right - left - 1), columnHeight),
                         color);
    }
}

} // namespace quarn::desktop
