#pragma once

#include "ui/modules/WidgetKind.h"

#include <QFrame>
#include <vector>

class QLabel;

namespace quarn::desktop {

class Figure;
class MiniGraph;

/// One reading at a glance: its kind, the figure, a caption and a mini graph. A click, or Return, opens it.
class Tile : public QFrame {
    Q_OBJECT
public:
    explicit Tile(WidgetKind kind, QWidget* parent = nullptr);
    void setCrossfades(bool crossfades);
    void show(const QString& figure, const QString& caption, const std::vector<double>& graph);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

Q_SIGNALS:
    void opened();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    WidgetKind kind_;
    QLabel* title_;
    Figure* figure_;
    QLabel* caption_;
    MiniGraph* graph_;
};

} // namespace quarn::desktop
