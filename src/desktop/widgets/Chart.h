#pragma once

#include "ui/modules/WidgetKind.h"

#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quarn::desktop {

class ChartOverlay;
class Legend;

/// Lines over time: each on a fill, with a faint grid, the scale at the right, times below, and a legend when
/// there are several. Hovering, or the arrow keys, show a hair line, the time and each line's value; where
/// nothing was measured the lines have holes. What the times are is up to the chart that derives from it.
class Chart : public QWidget {
    Q_OBJECT
public:
    struct Line {
        QString label;
        WidgetKind kind;
        bool second = false; ///< the second series of its kind: lighter
        enum class Fill { below, none } fill = Fill::below;
    };
    struct Scale {
        double full = 0; ///< the fixed top (100 for percent); 0: a 1-2-5 step above the largest value
        std::function<QString(double)> text; ///< a value with its unit
        double perUnit = 1; ///< how much the text says for one unit of the series (8 for bytes shown in
                            ///< bits), so that the steps are round in what is shown
    };

    ~Chart() override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// Where something was measured, in seconds of the chart's clock: moments, or periods that each value
    /// holds for. In order of time; NaN is no value.
    struct Data {
        struct Period {
            double from, to;
        };
        std::vector<Period> periods;
        std::vector<std::vector<double>> values; ///< by line, then by period
    };

    Chart(std::vector<Line> lines, Scale scale, QWidget* parent);

    const std::vector<Line>& lines() const { return lines_; }
    const Scale& scale() const { return scale_; }
    void changeScale(Scale scale) { scale_ = std::move(scale); }
    QString valueText(double value) const;

    /// Draws `points` between `from` and `to`, with a scale up to `top`. `values` stand in the legend and are
    /// read out, one for each line.
    void draw(Data points, double from, double to, double top, const QStringList& values);
    double from() const { return from_; }
    double to() const { return to_; }
    /// Draws anew what lies over the lines.
    void updateOverlay();

    /// The period under the hair line, for people: when it was, and how long ago (may be empty).
    virtual QString whenText(const Data::Period& period) const = 0;
    virtual QString agoText(const Data::Period& period) const = 0;
    /// Fills in the texts of the time axis, for times between `from` and `to`; `xOf` tells where one stands.
    virtual void describe(ChartOverlay& overlay, const std::function<double(double)>& xOf) const = 0;

    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Plot;

    void applyColours();
    int steps(double top) const;
    void layOut();
    void moveHair(int points);
    std::optional<size_t> nearest(double time) const;

    std::vector<Line> lines_;
    Scale scale_;
    Data shown_;
    double from_ = 0, to_ = 0;
    std::optional<double> hairAge_; ///< seconds before the right end
    Legend* legend_ = nullptr;      ///< only with several lines
    std::unique_ptr<Plot> plot_;
};

} // namespace quarn::desktop
