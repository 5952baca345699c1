#pragma once

#include <QStyledItemDelegate>

namespace quarn::desktop {

/// Paints the cells of every TableView: a bar behind the text where the model tells one (TableRole::barShare
/// and barKind), the mark of a changed value, a state in a capsule, the icon, the text. Selection, hover and
/// the line below a row are painted by the view. Paints by itself, without the style: a table of some
/// hundred cells is painted anew each tick.
class BarDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// Texts that are cut tell themselves in full.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

private:
    void paintCapsule(QPainter& painter, const QRect& area, int tone, const QString& text) const;
};

} // namespace quarn::desktop
