#pragma once

#include "ui/modules/WidgetKind.h"

#include <QString>
#include <QWidget>
#include <vector>

namespace quarn::desktop {

/// What the colours of a chart or a bar mean, with the figure of each, in as many rows as the width needs.
class Legend : public QWidget {
    Q_OBJECT
public:
    struct Entry {
        WidgetKind kind;
        double strength = 1; ///< as in Theme::shade
        QString label;
        QString value;
        bool operator==(const Entry&) const = default;
    };

    explicit Legend(QWidget* parent = nullptr);
    /// Repaints only what differs. An entry keeps the room that its widest value took, so that nothing moves.
    void show(const std::vector<Entry>& entries);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<QRect> places(int width) const;

    std::vector<Entry> entries_;
    std::vector<int> widths_; ///< of each entry, the widest so far
};

} // namespace quarn::desktop
