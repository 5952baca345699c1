#pragma once

#include "desktop/widgets/TableModel.h"
#include "ui/modules/AppRows.h"

#include <QIcon>

namespace quarn::desktop {

class ApplicationIcons;

/// The applications as a tree, each with its processes below. Its columns are the fields, in their order.
class AppModel final : public TableModel {
    Q_OBJECT
public:
    explicit AppModel(QObject* parent = nullptr);

    /// Shows what is new in a list.
    void take(std::shared_ptr<const ResourceAppList> list, const Known& known, const AppStyle& style);
    void setSearch(const QString& search);

    const AppRow& row(const QModelIndex& index) const { return shown_[slot(index)]; }
    const AppRows& rows() const { return rows_; }
    const AppStyle& style() const { return style_; }

    const TableColumn& column(int section) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

protected:
    bool take(size_t slot, size_t entry) override;

private:
    void show();
    void repaint(const QModelIndex& parent);
    QVariant toolTip(const AppRow& row, AppField field) const;
    QVariant picture(const AppRow& row) const;
    QVariant barShare(const AppRow& row, AppField field) const;

    const ApplicationIcons& icons_;
    QIcon plainIcon_; ///< of what has none
    AppRows rows_;
    AppView view_;
    AppStyle style_;
    std::vector<Entry> entries_;
    std::span<const AppRow> latest_;
    std::vector<AppRow> shown_; ///< by slot
};

} // namespace quarn::desktop
