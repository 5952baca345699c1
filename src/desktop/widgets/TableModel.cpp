#include "desktop/widgets/TableModel.h"

#include "desktop/Text.h"
#include "ui/modules/LetterCase.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace quarn::desktop {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view takeDigits(std::string_view& text) {
    size_t length = 0;
    while (length < text.size() && isDigit(text[length])) ++length;
    std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    while (digits.size() > 1 && digits.front() == '0') digits.remove_prefix(1);
    return digits;
}

int compareTexts(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        if (isDigit(a.front()) && isDigit(b.front())) {
            const auto left = takeDigits(a), right = takeDigits(b);
            if (left.size() != right.size()) return left.size() < right.size() ? -1 : 1;
            if (const int order = left.compare(right); order != 0) return order;
            continue;
        }
        const auto left = static_cast<unsigned char>(lower(a.front()));
        const auto right = static_cast<unsigned char>(lower(b.front()));
        if (left != right) return left < right ? -1 : 1;
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

bool isUnknown(const SortKey& key) { return std::isnan(key.number); }

} // namespace

int compare(const SortKey& a, const SortKey& b, Qt::SortOrder order) {
    if (isUnknown(a) != isUnknown(b)) return isUnknown(a) ? 1 : -1;
    if (isUnknown(a)) return 0;
    int result = a.number < b.number ? -1 : a.number > b.number ? 1 : compareTexts(a.text, b.text);
    return order == Qt::AscendingOrder ? result : -result;
}

RowKey RowKey::of(std::string_view text) {
    RowKey key{std::hash<std::string_view>()(text), 0xCBF29CE484222325U};
    for (const char c : text) key.second = (key.second ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    return key;
}

struct TableModel::Node {
    RowKey key{};
    Node* parent = nullptr;
    int row = 0;
    size_t slot = 0;
    uint64_t round = 0; ///< the last one in which it was wanted
    std::vector<Node*> children{};
    std::vector<Node*> wanted{}; ///< children of the round at hand, in order
};

/// One run of `arrange`.
class TableModel::Arrangement {
public:
    Arrangement(TableModel& model, std::span<const Entry> entries) : model_(model), entries_(entries) {}

    void run() {
        match();
        if (inOrder_ && fresh_.size() + model_.nodes_.size() - entries_.size() <= fewChanges) {
            // As it mostly is: a row goes, another comes, all others stay where they are.
            removeUnwanted(*model_.root_);
            for (Node* parent : parents_) insertFresh(*parent, Place::wanted);
        } else {
            for (Node* parent : parents_) insertFresh(*parent, Place::end);
            reorder();
            removeUnwanted(*model_.root_);
        }
        tellChanges();
    }

private:
    static constexpr size_t fewChanges = 16;
    enum class Place { wanted, end };

    bool isWanted(const Node& node) const { return node.round == model_.round_; }
    bool isFresh(const Node& node) const { return node.row < 0; }

    /// Finds the rows that stay and makes those that are new, still outside the model.
    void match() {
        ++model_.round_;
        Node& root = *model_.root_;
        root.round = model_.round_;
        root.wanted.clear();
        parents_.push_back(&root);
        std::vector<Node*> placed(entries_.size());
        for (size_t i = 0; i < entries_.size(); ++i) {
            Node& node = nodeFor(entries_[i].key);
            placed[i] = &node;
            Node* parent = entries_[i].parent < 0 ? &root : placed[static_cast<size_t>(entries_[i].parent)];
            node.round = model_.round_;
            node.wanted.clear();
            if (isFresh(node)) {
                node.parent = parent;
                fresh_.push_back(&node);
                model_.take(node.slot, i);
            } else {
                if (node.parent != parent || (!parent->wanted.empty() && follows(*parent, node)))
                    inOrder_ = false;
                if (model_.take(node.slot, i)) changed_.push_back(&node);
            }
            if (parent->wanted.empty() && parent != &root) parents_.push_back(parent);
            parent->wanted.push_back(&node);
        }
    }

    /// Whether the last row that stays under `parent` stands behind `node` now.
    static bool follows(const Node& parent, const Node& node) {
        for (auto it = parent.wanted.rbegin(); it != parent.wanted.rend(); ++it)
            if ((*it)->row >= 0) return (*it)->row > node.row;
        return false;
    }

    Node& nodeFor(RowKey key) {
        for (;;) {
            auto& node = model_.nodes_[key];
            if (!node) {
                node = std::make_unique<Node>();
                node->key = key;
                node->row = -1;
                node->slot = takeSlot();
                return *node;
            }
            if (!isWanted(*node)) return *node;
            ++key.second; // two rows with one key
        }
    }

    size_t takeSlot() {
        if (model_.freeSlots_.empty()) return model_.slots_++;
        const size_t slot = model_.freeSlots_.back();
        model_.freeSlots_.pop_back();
        return slot;
    }

    static void renumber(Node& parent, size_t from) {
        for (size_t i = from; i < parent.children.size(); ++i) parent.children[i]->row = static_cast<int>(i);
    }

    /// Inserts the new children of one parent, in runs where they belong, or all at the end.
    void insertFresh(Node& parent, Place place) {
        std::vector<Node*> run;
        for (size_t at = 0; at < parent.wanted.size(); ++at) {
            if (isFresh(*parent.wanted[at])) {
                run.push_back(parent.wanted[at]);
            } else if (place == Place::wanted && !run.empty()) {
                insert(parent, at - run.size(), run);
                run.clear();
            }
        }
        if (!run.empty()) insert(parent, parent.children.size(), run);
    }

    void insert(Node& parent, size_t at, const std::vector<Node*>& run) {
        model_.beginInsertRows(model_.indexOf(parent), static_cast<int>(at),
                               static_cast<int>(at + run.size()) - 1);
        parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(at), run.begin(),
                               run.end());
        renumber(parent, at);
        model_.endInsertRows();
    }

    /// Puts all that stay where they belong, what goes behind them.
    void reorder() {
        const auto isPlaced = [](const Node& parent) {
            return parent.wanted.size() <= parent.children.size() &&
                   std::equal(parent.wanted.begin(), parent.wanted.end(), parent.children.begin());
        };
        if (std::all_of(parents_.begin(), parents_.end(), [&](const Node* each) { return isPlaced(*each); }))
            return;
        Q_EMIT model_.layoutAboutToBeChanged();
        const QModelIndexList before = model_.persistentIndexList();
        std::vector<Node*> all{model_.root_.get()};
        for (const auto& [key, node] : model_.nodes_) all.push_back(node.get());
        for (Node* parent : all) {
            if (parent->children.empty() && parent->wanted.empty()) continue;
            std::vector<Node*> order = isWanted(*parent) ? parent->wanted : std::vector<Node*>();
            for (Node* child : parent->children)
                if (!isWanted(*child)) order.push_back(child);
            parent->children = std::move(order);
            for (Node* child : parent->children) child->parent = parent;
            renumber(*parent, 0);
        }
        QModelIndexList after;
        after.reserve(before.size());
        for (const QModelIndex& index : before)
            after.append(model_.indexOf(model_.node(index), index.column()));
        model_.changePersistentIndexList(before, after);
        Q_EMIT model_.layoutChanged();
    }

    void removeUnwanted(Node& parent) {
        for (size_t end = parent.children.size(); end > 0;) {
            if (isWanted(*parent.children[end - 1])) {
                Node& child = *parent.children[--end];
                if (!child.children.empty()) removeUnwanted(child);
                continue;
            }
            size_t begin = end;
            while (begin > 0 && !isWanted(*parent.children[begin - 1])) --begin;
            model_.beginRemoveRows(model_.indexOf(parent), static_cast<int>(begin),
                                   static_cast<int>(end) - 1);
            const std::vector<Node*> gone(parent.children.begin() + static_cast<std::ptrdiff_t>(begin),
                                          parent.children.begin() + static_cast<std::ptrdiff_t>(end));
            parent.children.erase(parent.children.begin() + static_cast<std::ptrdiff_t>(begin),
                                  parent.children.begin() + static_cast<std::ptrdiff_t>(end));
            renumber(parent, begin);
            model_.endRemoveRows();
            for (Node* node : gone) forget(*node);
            end = begin;
        }
    }

    void forget(Node& node) {
        for (Node* child : std::vector<Node*>(node.children)) forget(*child);
        model_.freeSlots_.push_back(node.slot);
        model_.nodes_.erase(RowKey(node.key));
    }

    /// One signal for each parent, from the first changed row to the last.
    void tellChanges() {
        struct Range {
            int first, last;
        };
        std::unordered_map<Node*, Range> ranges;
        for (const Node* node : changed_) {
            const auto [range, isNew] = ranges.try_emplace(node->parent, Range{node->row, node->row});
            range->second.first = std::min(range->second.first, node->row);
            range->second.last = std::max(range->second.last, node->row);
        }
        const int lastColumn = model_.columnCount() - 1;
        for (const auto& [parent, range] : ranges) {
            const QModelIndex above = model_.indexOf(*parent);
            Q_EMIT model_.dataChanged(model_.index(range.first, 0, above),
                                      model_.index(range.last, lastColumn, above));
        }
    }

    TableModel& model_;
    std::span<const Entry> entries_;
    std::vector<Node*> parents_; ///< the root, then every other row with children, parents first
    std::vector<Node*> fresh_;
    std::vector<Node*> changed_;
    bool inOrder_ = true;
};

TableModel::TableModel(QObject* parent) : QAbstractItemModel(parent), root_(std::make_unique<Node>()) {}
TableModel::~TableModel() = default;

void TableModel::arrange(std::span<const Entry> entries) { Arrangement(*this, entries).run(); }

const TableModel::Node& TableModel::node(const QModelIndex& index) const {
    return index.isValid() ? *static_cast<const Node*>(index.constInternalPointer()) : *root_;
}

size_t TableModel::slot(const QModelIndex& index) {
    return static_cast<const Node*>(index.constInternalPointer())->slot;
}

QModelIndex TableModel::indexOf(const Node& node, int column) const {
    return &node == root_.get() ? QModelIndex() : createIndex(node.row, column, &node);
}

QModelIndex TableModel::index(int row, int column, const QModelIndex& parent) const {
    const Node& above = node(parent);
    if (row < 0 || static_cast<size_t>(row) >= above.children.size() || column < 0 ||
        column >= columnCount() || parent.column() > 0)
        return {};
    return createIndex(row, column, above.children[static_cast<size_t>(row)]);
}

QModelIndex TableModel::parent(const QModelIndex& child) const {
    return child.isValid() ? indexOf(*node(child).parent) : QModelIndex();
}

int TableModel::rowCount(const QModelIndex& parent) const {
    return parent.column() > 0 ? 0 : static_cast<int>(node(parent).children.size());
}

bool TableModel::hasChildren(const QModelIndex& parent) const { return rowCount(parent) > 0; }

Qt::ItemFlags TableModel::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
    const TableColumn& shown = column(section);
    switch (role) {
    case Qt::DisplayRole: return say(shown.title);
    case Qt::ToolTipRole: return say(*shown.meaning ? shown.meaning : shown.title);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(
            Qt::AlignVCenter | (shown.align == TableColumn::Align::figure ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::InitialSortOrderRole: return shown.firstOrder;
    default: return {};
    }
}

QModelIndex TableModel::find(const RowKey& key) const {
    const auto found = nodes_.find(key);
    return found == nodes_.end() ? QModelIndex() : indexOf(*found->second);
}

} // namespace quarn::desktop
