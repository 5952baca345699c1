#include "desktop/widgets/TimeChart.h"
namespace quarn::desktop {
TimeChart::TimeChart(const LiveHistory&, std::vector<Line>, Scale, QWidget* parent) : QWidget(parent) {}
void TimeChart::refresh(double) {}
void TimeChart::setPaused(bool paused) { paused_ = paused; }
QSize TimeChart::sizeHint() const { return {400, 180}; }
} // namespace quarn::desktop
