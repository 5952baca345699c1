#pragma once

#include "ui/modules/WidgetKind.h"

#include <QFrame>
#include <vector>

class QLabel;

namespace quarn::desktop {

class ElidedLabel;
class Figure;
class MiniGraph;

/// One reading at a glance: its kind, the figure, a caption and a mini graph. A click, or Return, opens it.
class Tile : public QFrame {
    Q_OBJECT
public:
    explicit Tile(WidgetKind kind, QWidget* parent = nullptr);
    void show(const QString& figure, const QString& caption, const std::vector<double>& graph);

Q_SIGNALS:
    void opened();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    WidgetKind kind_;
    QLabel* title_;
    Figure* figure_;
    ElidedLabel* caption_;
    MiniGraph* graph_;
};

} // namespace quarn::desktop
