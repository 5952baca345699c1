#pragma once

#include "desktop/widgets/TableModel.h"
#include "ui/modules/ProcessRows.h"

namespace quarn::desktop {

class ApplicationIcons;

/// The processes as a list or a tree. Its columns are the fields, in their order.
class ProcessModel final : public TableModel {
    Q_OBJECT
public:
    explicit ProcessModel(QObject* parent = nullptr);

    /// Shows what is new in a snapshot.
    void take(const Snapshot& snapshot, const Known& known, const ProcessRows::Marks& marks, double now);
    /// Nobody looks for now, see ProcessRows.
    void pause() { rows_.pause(); }

    void setSearch(const QString& search);
    void setUser(std::optional<int64_t> user);
    void setShape(ProcessView::Shape shape);
    const ProcessView& view() const { return view_; }

    const ProcessRow& row(const QModelIndex& index) const { return shown_[slot(index)]; }
    const ProcessRows& rows() const { return rows_; }
    WallTime now() const { return now_; }

    const TableColumn& column(int section) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    void sort(int column, Qt::SortOrder order) override;

protected:
    bool take(size_t slot, size_t entry) override;

private:
    void show();
    QVariant toolTip(const ProcessRow& row, ProcessField field) const;
    std::optional<double> barShare(const ProcInfo& process, ProcessField field) const;

    const ApplicationIcons& icons_;
    ProcessRows rows_;
    ProcessView view_;
    WallTime now_{};
    double largestMemory_ = 1; ///< bytes
    std::vector<Entry> entries_;
    std::span<const ProcessRow> latest_;
    std::vector<ProcessRow> shown_; ///< by slot
};

/// What makes a process the same one from tick to tick.
RowKey keyOf(const ProcInfo& process);

} // namespace quarn::desktop
