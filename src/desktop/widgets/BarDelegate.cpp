#include "desktop/widgets/BarDelegate.h"

#include "desktop/Theme.h"
#include "desktop/widgets/TableColumn.h"
#include "inventory/CapsuleLabel.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace quarn::desktop {

namespace {

constexpr int sidePadding = 6;
constexpr int iconSize = 16;

QColor faint(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

struct Capsule {
    QChar sign;
    QColor color;
};

/// Level by sign and word first, then by colour; "ok" is quiet.
Capsule capsuleOf(int tone) {
    const auto& theme = Theme::current();
    switch (static_cast<CapsuleLabel::Tone>(tone)) {
    case CapsuleLabel::Tone::ok: return {QChar(0x25CF), theme.kind(WidgetKind::gpu)};       // ●
    case CapsuleLabel::Tone::info: return {QChar(0x25CB), theme.kind(WidgetKind::network)}; // ○
    case CapsuleLabel::Tone::warn: return {QChar(0x25B2), theme.warning()};                 // ▲
    case CapsuleLabel::Tone::bad: return {QChar(0x25A0), theme.critical()};                 // ■
    case CapsuleLabel::Tone::neutral: break;
    }
    return {QChar(0x25E6), theme.dim()}; // ◦
}

void paintBar(QPainter& painter, const QRect& cell, const QModelIndex& index) {
    const QVariant share = index.data(TableRole::barShare);
    if (!share.isValid()) return;
    const QRect room = cell.adjusted(2, 3, -2, -4);
    const int width = static_cast<int>(std::lround(std::clamp(share.toDouble(), 0.0, 1.0) * room.width()));
    if (width < 1) return;
    const auto kind = static_cast<WidgetKind>(index.data(TableRole::barKind).toInt());
    const auto& theme = Theme::current();
    painter.fillRect(QRect(room.left(), room.top(), width, room.height()),
                     faint(theme.kind(kind), theme.barOpacity()));
}

QString shownText(const QFontMetrics& metrics, const QString& text, int width) {
    // Most texts fit; measuring without shaping anew is what costs least.
    if (metrics.horizontalAdvance(text) <= width) return text;
    return metrics.elidedText(text, Qt::ElideRight, width);
}

} // namespace

void BarDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
    const auto& theme = Theme::current();
    const QRect& cell = option.rect;
    if (const QVariant flash = index.data(TableRole::flash); flash.isValid())
        painter->fillRect(cell.adjusted(0, 0, 0, -1), faint(theme.accent(), 0.28 * flash.toDouble()));
    paintBar(*painter, cell, index);

    QRect area = cell.adjusted(sidePadding, 0, -sidePadding, -1);
    if (const QVariant icon = index.data(Qt::DecorationRole); icon.isValid()) {
        const QRect place(area.left(), area.center().y() - iconSize / 2 + 1, iconSize, iconSize);
        icon.value<QIcon>().paint(painter, place);
        area.setLeft(place.right() + sidePadding);
    }
    const QString text = index.data(Qt::DisplayRole).toString();
    if (text.isEmpty()) return;
    if (const QVariant tone = index.data(TableRole::tone); tone.isValid()) {
        paintCapsule(*painter, area, tone.toInt(), text);
        return;
    }
    const bool dim = text == QChar(0x2014) || index.data(TableRole::dim).toBool(); // —
    const auto alignment = Qt::Alignment(index.data(Qt::TextAlignmentRole).toInt());
    painter->setPen(dim ? theme.dim() : theme.text());
    const QVariant font = index.data(Qt::FontRole);
    const QFont shown = font.isValid() ? font.value<QFont>().resolve(option.font) : option.font;
    painter->setFont(shown);
    painter->drawText(
        area, static_cast<int>(alignment | Qt::AlignVCenter) | Qt::TextSingleLine,
        shownText(font.isValid() ? QFontMetrics(shown) : option.fontMetrics, text, area.width()));
}

void BarDelegate::paintCapsule(QPainter& painter, const QRect& area, int tone, const QString& text) const {
    const Capsule capsule = capsuleOf(tone);
    QStyleOptionViewItem option;
    option.font = Theme::captionFont();
    option.fontMetrics = QFontMetrics(option.font);
    const int height = option.fontMetrics.height() + 4;
    const QString whole = capsule.sign + QString("  ") + text;
    const int width = std::min(option.fontMetrics.horizontalAdvance(whole) + 2 * sidePadding, area.width());
    const QRect box(area.left(), area.center().y() - height / 2 + 1, width, height);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(faint(capsule.color, 0.16));
    painter.drawRoundedRect(box, height / 2.0, height / 2.0);
    painter.setFont(option.font);
    painter.setPen(capsule.color);
    const QRect inside = box.adjusted(sidePadding, 0, -sidePadding, 0);
    painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, capsule.sign);
    painter.setPen(Theme::current().text());
    const int sign = option.fontMetrics.horizontalAdvance(capsule.sign + QString("  "));
    const QRect rest = inside.adjusted(sign, 0, 0, 0);
    painter.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     shownText(option.fontMetrics, text, rest.width()));
    painter.restore();
}

QSize BarDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const int width = option.fontMetrics.horizontalAdvance(index.data(Qt::DisplayRole).toString());
    return {width + 2 * sidePadding, std::max(Theme::rowHeight, option.fontMetrics.height() + 7)};
}

bool BarDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip) return QStyledItemDelegate::helpEvent(event, view, option, index);
    QString tip = index.data(Qt::ToolTipRole).toString();
    const QString text = index.data(Qt::DisplayRole).toString();
    if (tip.isEmpty() && option.fontMetrics.horizontalAdvance(text) > option.rect.width() - 2 * sidePadding)
        tip = text;
    // Names of strangers are plain text whatever they hold.
    QToolTip::showText(event->globalPos(),
                       tip.isEmpty() ? tip : QString("<span>%1</span>").arg(tip.toHtmlEscaped()), view);
    return true;
}

} // namespace quarn::desktop
