#pragma once

#include "ui/modules/LiveHistory.h"
#include "ui/modules/WidgetKind.h"

#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quarn::desktop {

class Legend;

/// Readings of the live history over time: a line on a fill, faint grid, scale at the right, "−60 s … now"
/// below, and a legend when there are several lines. Hovering, or the arrow keys, show a hair line, the time
/// and each series' value; gaps in sampling are gaps in the line. A click on the chart, or Space, pauses it;
/// the range comes from the setting `historyRange`.
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
        double perUnit = 1; ///< how much the text says for one unit of the series (8 for bytes shown in
                            ///< bits), so that the steps are round in what is shown
    };

    /// `history` must outlive this.
    TimeChart(const LiveHistory& history, std::vector<Line> lines, Scale scale, QWidget* parent = nullptr);
    ~TimeChart() override;

    /// Draws what is new since the last call; does nothing while paused or hidden.
    void refresh(double spanSeconds);
    bool isPaused() const { return paused_; }
    /// The chart stands still; what it misses meanwhile is shown when it goes on.
    void setPaused(bool paused);
    /// Replaces the scale, as when a person wants other units.
    void setScale(Scale scale);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Plot;

    void draw();
    void applyTheme();
    void layOut();
    void updateOverlay();
    void moveHair(int points);
    QString valueText(double value) const;

    const LiveHistory& history_;
    std::vector<Line> lines_;
    Scale scale_;
    double span_ = 60;
    bool paused_ = false;
    std::optional<double> hairAge_; ///< seconds before the right end
    Legend* legend_ = nullptr;      ///< only with several lines
    std::unique_ptr<Plot> plot_;
};

} // namespace quarn::desktop
