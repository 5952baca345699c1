#include "desktop/widgets/RankList.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/RowButton.h"

#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace quarn::desktop {

namespace {

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
    const QString& key() const { return row_.key.isEmpty() ? row_.name : row_.key; }
    void setCurrent(bool isCurrent) {
        if (std::exchange(isCurrent_, isCurrent) != isCurrent) update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const auto& theme = Theme::current();
        if (isCurrent_) painter.fillRect(rect(), theme.selection());
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
    bool isCurrent_ = false;
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
        connect(row, &RowButton::clicked, this, [this, row] { Q_EMIT opened(row->key()); });
        layout()->addWidget(row);
        rows_.push_back(row);
    }
    for (size_t i = 0; i < rows_.size(); ++i) {
        if (i < rows.size()) rows_[i]->set(rows[i]);
        rows_[i]->setCurrent(!current_.isEmpty() && rows_[i]->key() == current_);
        if (rows_[i]->isHidden() == (i < rows.size())) rows_[i]->setVisible(i < rows.size());
    }
}

void RankList::setColumns(std::vector<Column> columns) {
    if (columns_ == columns) return;
    columns_ = std::move(columns);
    update();
}

void RankList::setEmptyText(const QString& text) {
    if (std::exchange(emptyText_, text) != text) update();
}

void RankList::setCurrent(const QString& key) {
    current_ = key;
    for (auto* row : rows_) row->setCurrent(!key.isEmpty() && row->key() == key);
}

QRect RankList::cell(int column, int width) const {
    int left = width + Theme::gap;
    for (size_t i = static_cast<size_t>(column); i < columns_.size(); ++i)
        left -= columns_[i].width + Theme::gap;
    return {left, 0, columns_[static_cast<size_t>(column)].width, Theme::rowHeight};
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
                     emptyText_);
}

} // namespace quarn::desktop
