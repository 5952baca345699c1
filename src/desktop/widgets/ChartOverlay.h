#pragma once

#include <QColor>
#include <QString>
#include <QWidget>
#include <optional>
#include <vector>

namespace quarn::desktop {

/// What lies over the lines of a chart: its texts, the hair line under the pointer with what it reads, and
/// the mark of a pause. Takes no input.
class ChartOverlay : public QWidget {
    Q_OBJECT
public:
    struct Row { ///< of one series, at the hair line
        QColor color;
        QString label;
        QString value;
        std::optional<double> y; ///< of its point
    };
    struct Hair {
        double x = 0;
        QString time;
        QString ago;
        std::vector<Row> rows;
    };
    struct Mark { ///< of the scale
        double y = 0;
        QString text;
    };

    explicit ChartOverlay(QWidget* parent);

    struct Tick { ///< of the time axis
        double x = 0;
        QString text;
    };

    QRect area; ///< of the lines
    std::vector<Mark> marks;
    QString from, until;     ///< the ends of the time axis
    std::vector<Tick> ticks; ///< or marks along it, from left to right
    std::optional<Hair> hair;
    bool paused = false;
    bool focused = false;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintTexts(QPainter& painter) const;
    void paintTicks(QPainter& painter, const QRect& below) const;
    void paintHair(QPainter& painter) const;
    void paintPause(QPainter& painter) const;
};

} // namespace quarn::desktop
