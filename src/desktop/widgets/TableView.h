#pragma once

#include "desktop/widgets/TableColumn.h"

#include <QTreeView>
#include <vector>

class QTimer;

namespace quarn::desktop {

class TableModel;

/// Every list of the application: even rows with a faint line below, whole rows selected, headers that sort
/// (with the arrow always visible), columns that can be moved, resized and chosen with a right click on the
/// header. Ctrl+C copies the selected rows as text. What the user arranged is kept under the table's name.
///
/// The first column of the model is always shown and, with those that grow, takes the room that others leave.
class TableView : public QTreeView {
    Q_OBJECT
public:
    enum class Shape { list, tree };

    /// `name` stands for the table in the stored state.
    explicit TableView(const QString& name, Shape shape = Shape::list, QWidget* parent = nullptr);
    ~TableView() override;

    /// Shows a model whose rows are sorted by `sortColumn` as long as the user chose no other.
    void show(TableModel& model, int sortColumn, Qt::SortOrder order);
    void setShape(Shape shape);
    /// The column that stands at the left and carries the branches of a tree.
    void setLeadingColumn(int section);
    /// For short lists within a page that scrolls as a whole: as high as the rows, without a scroll bar.
    void fitRows();
    /// What an empty table says, in the place of its rows: why it is empty and what to do.
    void setEmptyText(const QString& text);

    /// The selected rows, from top to bottom, each once, with the index of its first column.
    QModelIndexList selectedRows() const;
    /// The shown columns of the selected rows, tabs between them.
    QString selectedText() const;
    void copySelection() const;
    /// Shows or hides a column, as its entry in the menu of the header does.
    void showColumn(int section, bool shown);
    /// A column of which no row knows anything is not shown, whatever was chosen; the menu says `why`. An
    /// empty text makes it a column like others.
    void setColumnUnknown(int section, const QString& why);

    void drawRow(QPainter* painter, const QStyleOptionViewItem& options,
                 const QModelIndex& index) const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    using QTreeView::setModel;

    struct Column {
        TableColumn column; ///< of the model, which may be gone before this
        bool isWanted = true;
        bool isInsistedOn = false; ///< the user asked for it, room or not
        int width = 0;             ///< that the user gave it; 0 for the built-in one
        QString whyUnknown{};      ///< of every row

        bool isShown() const { return isWanted && whyUnknown.isEmpty(); }
    };
    int builtWidth(int section) const;
    int leastWidth(int section) const;
    void arrangeAsBuilt();
    void restore(int sortColumn, Qt::SortOrder order);
    void save() const;
    void saveSoon();
    void fillWidth();
    void chooseColumns(const QPoint& at);

    QString name_;
    QString emptyText_;
    TableModel* table_ = nullptr;
    std::vector<Column> columns_;
    QTimer* saving_;
    QModelIndex hovered_;    ///< while painting
    bool arranging_ = false; ///< the columns move by our own doing
    int builtSortColumn_ = 0;
    Qt::SortOrder builtOrder_ = Qt::AscendingOrder;
};

} // namespace quarn::desktop
