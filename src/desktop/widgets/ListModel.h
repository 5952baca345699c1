#pragma once

#include "desktop/widgets/TableModel.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace quarn::desktop {

/// One row of the table of columns that each list has in one place. `text` of an unknown value is "—".
template <class Row>
struct ListColumn : TableColumn {
    QString (*text)(const Row&);
    SortKey (*sortKey)(const Row&);
    std::optional<CellBar> (*bar)(const Row&) = nullptr;
    QString (*tip)(const Row&) = nullptr; ///< more of it, or why it is unknown
};

/// A flat list: rows of one type, shown by a table of columns.
///
///     const std::vector<ListColumn<Volume>>& volumeColumns() {
///         static const std::vector<ListColumn<Volume>> columns{
///             {{"mount", "Mounted at", "", TableColumn::Align::text, 24, TableColumn::Shown::always},
///              [](const Volume& v) { return toQt(v.mount); },
///              [](const Volume& v) { return SortKey(v.mount); }},
///             …
///         };
///         return columns;
///     }
///     ListModel<Volume> model(volumeColumns(), [](const Volume& v) { return RowKey::of(v.mount); });
///
/// `Row` must be comparable with ==, so that only what changed is painted.
template <class Row>
class ListModel final : public TableModel {
public:
    /// The table of columns outlives the model.
    ListModel(const std::vector<ListColumn<Row>>& columns, RowKey (*key)(const Row&),
              QObject* parent = nullptr)
        : TableModel(parent), columns_(columns), key_(key) {}

    /// Brings the list up to date; rows with the key of a former one are that row.
    void setRows(std::vector<Row> rows) {
        latest_ = std::move(rows);
        show();
    }
    const Row& row(const QModelIndex& index) const { return shown_[slot(index)]; }

    const TableColumn& column(int section) const override { return columns_[static_cast<size_t>(section)]; }
    int columnCount(const QModelIndex& = {}) const override { return static_cast<int>(columns_.size()); }
    void sort(int column, Qt::SortOrder order) override {
        sortColumn_ = column;
        order_ = order;
        show();
    }
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        return index.isValid() ? TableModel::flags(index) | Qt::ItemNeverHasChildren : Qt::NoItemFlags;
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid()) return {};
        const Row& row = shown_[slot(index)];
        const ListColumn<Row>& column = columns_[static_cast<size_t>(index.column())];
        switch (role) {
        case Qt::DisplayRole: return column.text(row);
        case Qt::TextAlignmentRole: return headerData(index.column(), Qt::Horizontal, role);
        case Qt::ToolTipRole: return column.tip ? column.tip(row) : QVariant();
        case TableRole::barShare:
            if (const auto bar = column.bar ? column.bar(row) : std::nullopt) return bar->share;
            return {};
        case TableRole::barKind:
            if (const auto bar = column.bar ? column.bar(row) : std::nullopt)
                return static_cast<int>(bar->kind);
            return {};
        default: return {};
        }
    }

protected:
    bool take(size_t slot, size_t entry) override {
        if (shown_.size() <= slot) shown_.resize(slot + 1);
        const Row& row = latest_[places_[entry]];
        if (shown_[slot] == row) return false;
        shown_[slot] = row;
        return true;
    }

private:
    void show() {
        places_.resize(latest_.size());
        std::iota(places_.begin(), places_.end(), size_t{0});
        if (sortColumn_ >= 0 && sortColumn_ < columnCount()) {
            std::vector<SortKey> keys;
            keys.reserve(latest_.size());
            for (const Row& row : latest_)
                keys.push_back(columns_[static_cast<size_t>(sortColumn_)].sortKey(row));
            std::stable_sort(places_.begin(), places_.end(),
                             [&](size_t a, size_t b) { return compare(keys[a], keys[b], order_) < 0; });
        }
        std::vector<Entry> entries;
        entries.reserve(latest_.size());
        for (const size_t at : places_) entries.push_back({key_(latest_[at]), -1});
        arrange(entries);
    }

    const std::vector<ListColumn<Row>>& columns_;
    RowKey (*key_)(const Row&);
    std::vector<Row> latest_;    ///< as they came
    std::vector<size_t> places_; ///< of `latest_`, as they are shown
    std::vector<Row> shown_;     ///< by slot
    int sortColumn_ = -1;
    Qt::SortOrder order_ = Qt::AscendingOrder;
};

} // namespace quarn::desktop
