#pragma once

#include "ui/modules/WidgetKind.h"

#include <QWidget>
#include <vector>

namespace quarn::desktop {

class RankRow;

/// A short list of what uses most: a name, then figures with a bar in the background of each. Rows are made
/// once; a click, Space or Return opens one.
class RankList : public QWidget {
    Q_OBJECT
public:
    struct Column {
        QString title;
        WidgetKind kind; ///< hue of the bars
        int width = 92;

        bool operator==(const Column&) const = default;
    };
    struct Cell {
        QString text;
        double share = 0; ///< of the bar, 0 to 1
    };
    struct Row {
        QString name;
        QString note;  ///< dim, behind the name
        QString key{}; ///< what `opened` says; the name where it is empty
        std::vector<Cell> cells;
    };

    RankList(const QString& nameTitle, std::vector<Column> columns, QWidget* parent = nullptr);
    /// Shows these rows; only what changed is painted.
    void show(const std::vector<Row>& rows);
    /// Other columns, for the rows that are shown next.
    void setColumns(std::vector<Column> columns);
    /// What stands in the place of rows when there are none.
    void setEmptyText(const QString& text);
    /// The row that is marked as chosen; an empty key marks none.
    void setCurrent(const QString& key);

    const std::vector<Column>& columns() const { return columns_; }
    /// Where a column's cells stand in a row of this width.
    QRect cell(int column, int width) const;

Q_SIGNALS:
    void opened(const QString& key);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString nameTitle_;
    QString emptyText_;
    QString current_;
    std::vector<Column> columns_;
    std::vector<RankRow*> rows_;
};

} // namespace quarn::desktop
