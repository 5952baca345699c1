#pragma once

#include "desktop/widgets/TableModel.h"
#include "inventory/ConnectionRows.h"

namespace quarn::desktop {

/// The connections, grouped or not. Its columns are the keys of ConnectionKey, in their order; sorting is
/// asked for and comes with the next rows.
class ConnectionModel final : public TableModel {
    Q_OBJECT
public:
    using TableModel::TableModel;

    void show(ConnectionRows rows);
    /// The column in which groups tell how many they are; takes effect with the next rows.
    void setLead(ConnectionKey key);
    const ConnectionRow& row(const QModelIndex& index) const { return shown_[slot(index)]; }

    const TableColumn& column(int section) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

Q_SIGNALS:
    void sortWanted(ConnectionKey key, ConnectionView::Direction direction);

protected:
    bool take(size_t slot, size_t entry) override;

private:
    ConnectionKey lead_ = ConnectionKey::process;
    std::vector<ConnectionRow> latest_;
    std::vector<ConnectionRow> shown_; ///< by slot
};

} // namespace quarn::desktop
