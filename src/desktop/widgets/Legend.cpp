#include "desktop/widgets/Legend.h"

#include "desktop/Theme.h"

#include <QPainter>
#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr int edge = 8;               // of a swatch
constexpr int between = 6;            // swatch, label and value
constexpr int apart = 2 * Theme::gap; // entries

int rowHeight() { return QFontMetrics(Theme::captionFont()).height() + 2; }

} // namespace

Legend::Legend(QWidget* parent) : QWidget(parent) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Legend::show(const std::vector<Entry>& entries) {
    if (entries == entries_) return;
    entries_ = entries;
    widths_.resize(entries_.size());
    const QFontMetrics metrics(Theme::captionFont());
    bool wider = false;
    for (size_t i = 0; i < entries_.size(); ++i) {
        const int width = edge + between + metrics.horizontalAdvance(entries_[i].label) + between +
                          metrics.horizontalAdvance(entries_[i].value);
        wider |= width > widths_[i];
        widths_[i] = std::max(widths_[i], width);
    }
    if (wider) updateGeometry();
    update();
}

std::vector<QRect> Legend::places(int width) const {
    std::vector<QRect> places;
    int x = 0, y = 0;
    for (const int entry : widths_) {
        if (x > 0 && x + entry > width) {
            x = 0;
            y += rowHeight();
        }
        places.emplace_back(x, y, entry, rowHeight());
        x += entry + apart;
    }
    return places;
}

int Legend::heightForWidth(int width) const {
    return widths_.empty() ? rowHeight() : places(width).back().bottom() + 1;
}

QSize Legend::sizeHint() const {
    int width = 0;
    for (const int entry : widths_) width += entry + apart;
    return {std::max(0, width - apart), rowHeight()};
}

QSize Legend::minimumSizeHint() const {
    return {widths_.empty() ? 0 : *std::max_element(widths_.begin(), widths_.end()), rowHeight()};
}

void Legend::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(Theme::captionFont());
    const auto& theme = Theme::current();
    const auto rows = places(width());
    for (size_t i = 0; i < entries_.size(); ++i) {
        const QRect& row = rows[i];
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.shade(entries_[i].kind, entries_[i].strength));
        painter.drawRoundedRect(QRect(row.x(), row.center().y() - edge / 2 + 1, edge, edge), 2, 2);
        painter.setPen(theme.dim());
        const QRect text = row.adjusted(edge + between, 0, 0, 0);
        painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter, entries_[i].label);
        painter.setPen(theme.text());
        painter.drawText(text, Qt::AlignRight | Qt::AlignVCenter, entries_[i].value);
    }
}

} // namespace quarn::desktop
