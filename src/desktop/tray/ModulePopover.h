#pragma once

#include "ui/modules/WidgetKind.h"

#include <QFrame>

class QLabel;
class QVBoxLayout;

namespace quarn {
class LiveHistory;
}

namespace quarn::desktop {

class DetailList;
class ReadingView;

/// How much a popover tells.
enum class PopoverDetail {
    brief, ///< five lines: the busiest processes, or the parts of what has no processes
    full,  ///< ten processes and the parts
};

/// The window that opens at a status item: figure, caption, graph, and what is behind them. It closes by
/// itself when it loses the focus, and with Escape.
class ModulePopover : public QFrame {
    Q_OBJECT
public:
    ModulePopover(WidgetKind kind, PopoverDetail detail);

    WidgetKind kind() const { return kind_; }
    /// The graph shows the last `span` seconds of `history`.
    void update(const Reading& reading, const LiveHistory& history, double span);

Q_SIGNALS:
    void openQuarn();
    void closed();

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void addLists(QVBoxLayout& column);

    WidgetKind kind_;
    PopoverDetail detail_;
    ReadingView* view_;
    QLabel* spanText_;
    DetailList* processes_ = nullptr; ///< nullptr when nothing is known by process
    DetailList* parts_ = nullptr;     ///< nullptr in brief when there are processes
    QLabel* none_;                    ///< why there are no lines
};

} // namespace quarn::desktop
