#include "desktop/Icon.h"

#include "desktop/DrawnIcon.h"
#include "desktop/Theme.h"

#include <QPainter>
#include <QPainterPath>

namespace quarn::desktop {

namespace {

/// Draws on a field of 16 × 16.
void draw(QPainter& p, const QString& name) {
    const auto line = [&](double x1, double y1, double x2, double y2) {
        p.drawLine(QPointF(x1, y1), QPointF(x2, y2));
    };
    const auto box = [&](double x, double y, double w, double h, double r = 1.5) {
        p.drawRoundedRect(QRectF(x, y, w, h), r, r);
    };
    const auto polyline = [&](std::initializer_list<QPointF> points) {
        p.drawPolyline(QPolygonF(QList<QPointF>(points)));
    };
    if (name == "overview") {
        box(2, 2, 5, 5), box(9, 2, 5, 5), box(2, 9, 5, 5), box(9, 9, 5, 5);
    } else if (name == "cpu") {
        box(4, 4, 8, 8);
        for (const double at : {6.0, 10.0})
            line(at, 1.5, at, 4), line(at, 12, at, 14.5), line(1.5, at, 4, at), line(12, at, 14.5, at);
    } else if (name == "memory") {
        box(1.5, 4.5, 13, 7);
        for (const double at : {5.0, 8.0, 11.0}) line(at, 7, at, 9), line(at, 11.5, at, 13.5);
    } else if (name == "processes") {
        for (const double at : {4.0, 8.0, 12.0}) line(2, at, 3, at), line(6, at, 14, at);
    } else if (name == "applications") {
        box(2, 3, 12, 10), line(2, 6.5, 14, 6.5), line(4.2, 4.8, 4.3, 4.8), line(6.4, 4.8, 6.5, 4.8);
    } else if (name == "program") {
        box(3, 3, 10, 10, 2.5);
    } else if (name == "history") {
        p.drawEllipse(QPointF(8, 8), 6, 6), polyline({{8, 4.5}, {8, 8}, {10.5, 9.8}});
    } else if (name == "network") {
        polyline({{2, 7}, {5, 3}, {8, 7}}), line(5, 3, 5, 12);
        polyline({{8, 9}, {11, 13}, {14, 9}}), line(11, 4, 11, 13);
    } else if (name == "connections") {
        p.drawEllipse(QPointF(4, 12), 2, 2), p.drawEllipse(QPointF(12, 4), 2, 2), line(5.5, 10.5, 10.5, 5.5);
    } else if (name == "disks") {
        p.drawEllipse(QRectF(2.5, 2, 11, 4));
        QPainterPath path(QPointF(2.5, 4));
        path.lineTo(2.5, 12), path.cubicTo(2.5, 14.7, 13.5, 14.7, 13.5, 12), path.lineTo(13.5, 4);
        p.drawPath(path);
    } else if (name == "sensors") {
        QPainterPath path(QPointF(6, 9));
        path.lineTo(6, 3.5), path.cubicTo(6, 1, 10, 1, 10, 3.5), path.lineTo(10, 9);
        path.cubicTo(13, 11.5, 11, 15, 8, 15), path.cubicTo(5, 15, 3, 11.5, 6, 9);
        p.drawPath(path), line(8, 6, 8, 11);
    } else if (name == "power") {
        polyline({{9, 1.5}, {4, 9}, {8, 9}, {7, 14.5}, {12, 7}, {8, 7}, {9, 1.5}});
    } else if (name == "gpu") {
        box(1.5, 4, 13, 8), p.drawEllipse(QPointF(8, 8), 2.2, 2.2), line(3.5, 12, 3.5, 14),
            line(6, 12, 6, 14);
    } else if (name == "system") {
        box(1.5, 2.5, 13, 8.5), line(5.5, 14, 10.5, 14), line(8, 11, 8, 14);
    } else if (name == "settings") {
        for (const double at : {4.0, 8.0, 12.0}) line(2, at, 14, at);
        p.setBrush(p.pen().color());
        p.drawEllipse(QPointF(10, 4), 1.2, 1.2), p.drawEllipse(QPointF(5, 8), 1.2, 1.2),
            p.drawEllipse(QPointF(11, 12), 1.2, 1.2);
    } else if (name == "search") {
        p.drawEllipse(QPointF(7, 7), 4.5, 4.5), line(10.5, 10.5, 14, 14);
    } else if (name == "pause") {
        line(5.5, 3, 5.5, 13), line(10.5, 3, 10.5, 13);
    } else if (name == "play") {
        polyline({{5, 3}, {12.5, 8}, {5, 13}, {5, 3}});
    } else if (name == "close") {
        line(4, 4, 12, 12), line(12, 4, 4, 12);
    } else if (name == "warning") {
        polyline({{8, 2}, {14.5, 13.5}, {1.5, 13.5}, {8, 2}}), line(8, 6.5, 8, 9.5), line(8, 11.5, 8, 11.6);
    } else if (name == "critical") {
        polyline({{5.5, 2},
                  {10.5, 2},
                  {14, 5.5},
                  {14, 10.5},
                  {10.5, 14},
                  {5.5, 14},
                  {2, 10.5},
                  {2, 5.5},
                  {5.5, 2}});
        line(8, 5, 8, 8.5), line(8, 11, 8, 11.1);
    } else if (name == "note") {
        p.drawEllipse(QPointF(8, 8), 6, 6), line(8, 7.5, 8, 11), line(8, 5, 8, 5.1);
    } else if (name == "quarn") {
        polyline({{1.5, 9}, {4.5, 9}, {6.5, 3}, {9.5, 13}, {11.5, 7}, {14.5, 7}});
    } else {
        p.drawEllipse(QPointF(8, 8), 2, 2);
    }
}

class LineIcon final : public DrawnIcon {
public:
    explicit LineIcon(QString name) : name_(std::move(name)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const auto& theme = Theme::current();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 16.0, rect.height() / 16.0);
        const QColor color = name_ == "quarn"                                ? theme.accent()
                             : name_ == "warning"                            ? theme.warning()
                             : name_ == "critical"                           ? theme.critical()
                             : mode == QIcon::Disabled || name_ == "program" ? theme.dim()
                                                                             : theme.text();
        painter->setPen(
            QPen(color, name_ == "quarn" ? 1.8 : 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        draw(*painter, name_);
        painter->restore();
    }
    QIconEngine* clone() const override { return new LineIcon(name_); }

private:
    QString name_;
};

} // namespace

QIcon icon(const QString& name) { return QIcon(new LineIcon(name)); }

} // namespace quarn::desktop
