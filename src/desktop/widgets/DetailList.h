#pragma once

#include "ui/modules/KindDetails.h"

#include <QWidget>

namespace quarn::desktop {

/// Names at the left and their figures at the right, one row each. Long names are cut in the middle. The list
/// keeps the height of `rows` rows, so that what stands below it does not move when there are fewer.
class DetailList : public QWidget {
    Q_OBJECT
public:
    explicit DetailList(int rows, QWidget* parent = nullptr);
    /// Repaints only when a line differs.
    void setLines(std::vector<DetailLine> lines);
    void setRows(int rows);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int rowHeight() const;

    int rows_;
    std::vector<DetailLine> lines_;
};

} // namespace quarn::desktop
