#pragma once

#include "desktop/widgets/Chart.h"
#include "ui/modules/HistorySeries.h"

namespace quarn::desktop {

/// A chart of the long-term history, over calendar time: what holds for a period is drawn level, and where
/// nothing was recorded there is a hole.
class HistoryChart : public Chart {
    Q_OBJECT
public:
    HistoryChart(std::vector<Line> lines, Scale scale, QWidget* parent = nullptr);

    /// Shows the lines of `series`, in the order of this chart's, between two times in Unix seconds.
    void show(const HistorySeries& series, int64_t from, int64_t to);
    /// Replaces the scale for what is shown next.
    void setScale(Scale scale) { changeScale(std::move(scale)); }

protected:
    QString whenText(const Data::Period& period) const override;
    QString agoText(const Data::Period& period) const override;
    void describe(ChartOverlay& overlay, const std::function<double(double)>& xOf) const override;
};

} // namespace quarn::desktop
