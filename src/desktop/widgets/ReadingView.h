#pragma once

#include "ui/modules/WidgetKind.h"

#include <QWidget>

class QLabel;

namespace quarn {
class LiveHistory;
}

namespace quarn::desktop {

class FlashLabel;
class MiniGraph;

/// One kind of reading as panels and popovers show it: title behind the dot of its hue, the one big figure,
/// a caption, and its graph.
class ReadingView : public QWidget {
    Q_OBJECT
public:
    ReadingView(WidgetKind kind, int graphHeight, QWidget* parent = nullptr);

    /// The graph shows the last `span` seconds of `history`.
    void show(const Reading& reading, const LiveHistory& history, double span);
    void setFlashes(bool flashes);
    void applyTheme();
    /// "CPU: 37 %, load 2.31 on 8 cores", for who cannot see it.
    QString spoken() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    WidgetKind kind_;
    QLabel* titleLabel_;
    FlashLabel* value_;
    QLabel* caption_;
    MiniGraph* graph_;
};

} // namespace quarn::desktop
