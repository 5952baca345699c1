#pragma once

#include "desktop/widgets/TableColumn.h"

#include <QAbstractItemModel>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace quarn::desktop {

/// What makes a row the same row from refresh to refresh.
struct RowKey {
    uint64_t first = 0;
    uint64_t second = 0;

    bool operator==(const RowKey&) const = default;
    static RowKey of(std::string_view text); ///< a hash wide enough to stand for the text
    struct Hash {
        size_t operator()(const RowKey& key) const {
            return static_cast<size_t>((key.first * 0x9E3779B97F4A7C15U) ^ key.second);
        }
    };
};

/// A list or tree of rows that know their keys, brought up to date in place: no reset, so selection, current
/// row and expanded branches stay with their rows while these appear, vanish, move and change parents.
///
/// A list derives from it, keeps what it shows of each row under the row's slot, and calls `arrange`.
class TableModel : public QAbstractItemModel {
    Q_OBJECT
public:
    explicit TableModel(QObject* parent = nullptr);
    ~TableModel() override;

    virtual const TableColumn& column(int section) const = 0;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// The row with this key; invalid when there is none.
    QModelIndex find(const RowKey& key) const;

protected:
    struct Entry {
        RowKey key;
        int parent = -1; ///< place among the entries, before this one; −1 at the top
    };

    /// Makes the rows those of `entries`, which come in the order in which they are shown, parents before
    /// their children. Of entries with one key the later ones are given keys of their own.
    void arrange(std::span<const Entry> entries);
    /// Where the derived list keeps what belongs to a row.
    static size_t slot(const QModelIndex& index);
    /// Puts what belongs to entry number `entry` into a slot; slots count from 0 without large gaps. Returns
    /// whether what the row shows changed.
    virtual bool take(size_t slot, size_t entry) = 0;

private:
    struct Node;
    class Arrangement;

    const Node& node(const QModelIndex& index) const;
    QModelIndex indexOf(const Node& node, int column = 0) const;

    std::unique_ptr<Node> root_;
    std::unordered_map<RowKey, std::unique_ptr<Node>, RowKey::Hash> nodes_;
    std::vector<size_t> freeSlots_;
    size_t slots_ = 0;
    uint64_t round_ = 0;
};

} // namespace quarn::desktop
