#include "desktop/widgets/AttentionList.h"

#include "desktop/Icon.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/RowButton.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr int iconEdge = 16;
constexpr size_t mostRows = 6; ///< further ones are less grave

struct Level {
    const char* icon;
    const char* word;
};
Level of(AttentionLevel level) {
    switch (level) {
    case AttentionLevel::critical: return {"critical", "Critical"};
    case AttentionLevel::warning: return {"warning", "Warning"};
    case AttentionLevel::note: break;
    }
    return {"note", "Note"};
}

} // namespace

/// One item: icon, what, and more of it below.
class AttentionRow final : public RowButton {
public:
    AttentionRow() {
        setFixedHeight(QFontMetrics(font()).height() + QFontMetrics(Theme::captionFont()).height() +
                       Theme::gap);
    }

    void set(const AttentionItem& item) {
        if (item == item_) return;
        item_ = item;
        const auto level = of(item.level);
        setAccessibleName(say(level.word) + ": " + toQt(item.text) + ", " + toQt(item.detail));
        setToolTip(accessibleName().toHtmlEscaped());
        update();
    }
    const AttentionItem& item() const { return item_; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const auto& theme = Theme::current();
        paintBackground(painter);
        desktop::icon(of(item_.level).icon).paint(&painter, QRect(4, Theme::gap / 2, iconEdge, iconEdge));
        QRect place = rect().adjusted(iconEdge + Theme::gap + 4, Theme::gap / 2 - 1, -4, 0);
        const auto line = [&](const std::string& text, const QColor& color) {
            painter.setPen(color);
            const auto metrics = painter.fontMetrics();
            painter.drawText(place, Qt::AlignLeft | Qt::AlignTop,
                             metrics.elidedText(toQt(text), Qt::ElideRight, place.width()));
            place.translate(0, metrics.height());
        };
        line(item_.text, theme.text());
        painter.setFont(Theme::captionFont());
        line(item_.detail, theme.dim());
    }

private:
    AttentionItem item_{};
};

AttentionList::AttentionList(QWidget* parent)
    : QWidget(parent), nothing_(new QLabel(say("Nothing needs attention."))), watched_(new QLabel) {
    watched_->setProperty("dim", true);
    watched_->setTextFormat(Qt::PlainText);
    watched_->setWordWrap(true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(nothing_);
    column->addWidget(watched_);
}

void AttentionList::show(const std::vector<AttentionItem>& items, const QString& watched) {
    const size_t shown = std::min(items.size(), mostRows);
    while (rows_.size() < shown) {
        auto* row = new AttentionRow;
        connect(row, &RowButton::clicked, this,
                [this, row] { Q_EMIT opened(toQt(row->item().page), toQt(row->item().search)); });
        layout()->addWidget(row);
        rows_.push_back(row);
    }
    for (QLabel* label : {nothing_, watched_})
        if (label->isHidden() == items.empty()) label->setVisible(items.empty());
    if (watched_->text() != watched) watched_->setText(watched);
    for (size_t i = 0; i < rows_.size(); ++i) {
        if (i < shown) rows_[i]->set(items[i]);
        if (rows_[i]->isHidden() == (i < shown)) rows_[i]->setVisible(i < shown);
    }
}

} // namespace quarn::desktop
