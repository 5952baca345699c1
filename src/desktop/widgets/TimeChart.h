#pragma once

#include "ui/modules/LiveHistory.h"
#include "ui/modules/WidgetKind.h"

#include <QWidget>
#include <functional>
#include <vector>

class QCustomPlot;

namespace quarn::desktop {

/// Readings of the live history over time: a line on a fill, faint grid, scale at the right, "−60 s … now"
/// below. Hovering shows a hair line, the time and each series' value; gaps in sampling are gaps in the line.
/// A click on the chart, or Space, pauses it; the range comes from the setting `historyRange`.
class TimeChart : public QWidget {
    Q_OBJECT
public:
    struct Line {
        LiveSeries series;
        QString label;
        WidgetKind kind;
        bool second = false; ///< the second series of its kind: lighter
    };
    struct Scale {
        double full = 0; ///< the fixed top (100 for percent); 0: the next 1-2-5 step above the largest value,
                         ///< which shrinks only after ten seconds
        std::function<QString(double)> text; ///< a value with its unit
    };

    TimeChart(const LiveHistory& history, std::vector<Line> lines, Scale scale, QWidget* parent = nullptr);

    /// Draws what is new since the last call; does nothing while paused or hidden.
    void refresh(double spanSeconds);
    bool isPaused() const { return paused_; }
    void setPaused(bool paused);

    QSize sizeHint() const override;

private:
    bool paused_ = false;
};

} // namespace quarn::desktop
