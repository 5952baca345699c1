#include "desktop/widgets/DetailList.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"

#include <QPainter>

namespace quarn::desktop {

DetailList::DetailList(int rows, QWidget* parent) : QWidget(parent), rows_(rows) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void DetailList::setLines(std::vector<DetailLine> lines) {
    if (lines == lines_) return;
    lines_ = std::move(lines);
    QStringList spoken;
    for (const DetailLine& line : lines_) spoken << toQt(line.name) + " " + toQt(line.figure);
    setAccessibleName(spoken.join(", "));
    update();
}

void DetailList::setRows(int rows) {
    if (rows == rows_) return;
    rows_ = rows;
    updateGeometry();
}

int DetailList::rowHeight() const { return fontMetrics().height() + 4; }

QSize DetailList::sizeHint() const { return {200, rows_ * rowHeight()}; }

void DetailList::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int height = rowHeight();
    int y = 0;
    for (const DetailLine& line : lines_) {
        const QRect row(0, y, width(), height);
        const QString figure = toQt(line.figure);
        const int room = width() - fontMetrics().horizontalAdvance(figure) - 2 * Theme::gap;
        painter.setPen(Theme::current().text());
        painter.drawText(row, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, figure);
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(toQt(line.name), Qt::ElideMiddle, room));
        y += height;
    }
}

} // namespace quarn::desktop
