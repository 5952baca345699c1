#include "desktop/widgets/RankList.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/RowButton.h"

#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr int cellWidth = 92;
constexpr int inset = 6;

} // namespace

/// One row, a button to keyboard and screen reader.
class RankRow final : public RowButton {
public:
    explicit RankRow(const RankList& list) : list_(list) { setFixedHeight(Theme::rowHeight); }

    void set(const RankList::Row& row) {
        row_ = row;
        QStringList spoken{row_.name};
        if (!row_.note.isEmpty()) spoken.append(row_.note);
        for (size_t i = 0; i < row_.cells.size(); ++i)
            spoken.append(list_.columns()[i].title + ' ' + row_.cells[i].text);
        const QString name = spoken.join(", ");
        if (accessibleName() == name) return;
        setAccessibleName(name);
        setToolTip(name.toHtmlEscaped());
        update();
    }
    const QString& name() const { return row_.name; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const auto& theme = Theme::current();
        paintBackground(painter);
        painter.fillRect(QRect(0, 0, width(), 1), theme.line());
        const QRect names(inset, 0, list_.cell(0, width()).left() - 2 * inset, height());
        const QString name = painter.fontMetrics().elidedText(row_.name, Qt::ElideRight, names.width());
        painter.setPen(theme.text());
        painter.drawText(names, Qt::AlignLeft | Qt::AlignVCenter, name);
        const int used = painter.fontMetrics().horizontalAdvance(name) + Theme::gap;
        painter.setPen(theme.dim());
        if (used + painter.fontMetrics().horizontalAdvance(row_.note) <= names.width())
            painter.drawText(names.adjusted(used, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, row_.note);
        for (size_t i = 0; i < row_.cells.size(); ++i) paintCell(painter, static_cast<int>(i));
    }

private:
    void paintCell(QPainter& painter, int column) const {
        const auto& theme = Theme::current();
        const auto& cell = row_.cells[static_cast<size_t>(column)];
        const QRect place = list_.cell(column, width()).adjusted(0, 3, 0, -2);
        QColor color = theme.kind(list_.columns()[static_cast<size_t>(column)].kind);
        color.setAlphaF(theme.barOpacity());
        const double share = std::clamp(cell.share, 0.0, 1.0);
        const int length = static_cast<int>(share * place.width());
        painter.fillRect(QRect(place.left(), place.top(), length, place.height()), color);
        painter.setPen(theme.text());
        painter.drawText(place.adjusted(0, 0, -inset, 0), Qt::AlignRight | Qt::AlignVCenter, cell.text);
    }

    const RankList& list_;
    RankList::Row row_;
};

RankList::RankList(const QString& nameTitle, std::vector<Column> columns, QWidget* parent)
    : QWidget(parent), nameTitle_(nameTitle), columns_(std::move(columns)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, QFontMetrics(Theme::captionFont()).height() + 4, 0, 0);
    column->setSpacing(0);
    setMinimumHeight(column->contentsMargins().top() + Theme::rowHeight);
}

void RankList::show(const std::vector<Row>& rows) {
    while (rows_.size() < rows.size()) {
        auto* row = new RankRow(*this);
        connect(row, &RowButton::clicked, this, [this, row] { Q_EMIT opened(row->name()); });
        layout()->addWidget(row);
        rows_.push_back(row);
    }
    for (size_t i = 0; i < rows_.size(); ++i) {
        if (i < rows.size()) rows_[i]->set(rows[i]);
        if (rows_[i]->isHidden() == (i < rows.size())) rows_[i]->setVisible(i < rows.size());
    }
}

QRect RankList::cell(int column, int width) const {
    const int behind = static_cast<int>(columns_.size()) - column;
    return {width - behind * cellWidth - (behind - 1) * Theme::gap, 0, cellWidth, Theme::rowHeight};
}

void RankList::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(Theme::captionFont());
    painter.setPen(Theme::current().dim());
    const int height = layout()->contentsMargins().top() - 2;
    painter.drawText(QRect(inset, 0, width(), height), Qt::AlignLeft | Qt::AlignVCenter, nameTitle_);
    for (size_t i = 0; i < columns_.size(); ++i) {
        QRect place = cell(static_cast<int>(i), width());
        place.setHeight(height);
        painter.drawText(place.adjusted(0, 0, -inset, 0), Qt::AlignRight | Qt::AlignVCenter,
                         columns_[i].title);
    }
    if (!rows_.empty() && !rows_.front()->isHidden()) return;
    painter.setFont(font());
    painter.drawText(QRect(inset, height, width(), Theme::rowHeight), Qt::AlignLeft | Qt::AlignVCenter,
                     say("No process could be read"));
}

} // namespace quarn::desktop
