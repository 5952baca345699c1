#pragma once

#include "desktop/widgets/Chart.h"
#include "ui/modules/LiveHistory.h"
#include "ui/modules/SteadyTop.h"

namespace quarn::desktop {

/// A chart of the live history, "−60 s … now". Its scale shrinks only after ten seconds. A click on the
/// chart, or Space, pauses it; the range comes from the setting `historyRange`.
class TimeChart : public Chart {
    Q_OBJECT
public:
    struct Line {
        LiveSeries series;
        QString label;
        WidgetKind kind;
        bool second = false; ///< the second series of its kind: lighter
    };

    /// `history` must outlive this.
    TimeChart(const LiveHistory& history, std::vector<Line> lines, Scale scale, QWidget* parent = nullptr);

    /// Draws what is new since the last call; does nothing while paused or hidden.
    void refresh(double spanSeconds);
    bool isPaused() const { return paused_; }
    /// The chart stands still; what it misses meanwhile is shown when it goes on.
    void setPaused(bool paused);
    /// Replaces the scale, as when a person wants other units.
    void setScale(Scale scale);

protected:
    void showEvent(QShowEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    QString whenText(const Data::Period& period) const override;
    QString agoText(const Data::Period& period) const override;
    void describe(ChartOverlay& overlay, const std::function<double(double)>& xOf) const override;

private:
    void drawLatest();

    const LiveHistory& history_;
    std::vector<LiveSeries> series_; ///< by line
    SteadyTop top_;
    double span_ = 60;
    bool paused_ = false;
};

} // namespace quarn::desktop
