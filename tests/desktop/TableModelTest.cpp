// Lists that change in place: what a view holds on to must stay with its rows.
#include "desktop/widgets/ListModel.h"
#include "desktop/widgets/TableView.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>
#include <map>
#include <random>

namespace quarn::testing {
namespace {

using namespace desktop;

struct Item {
    int id = 0;
    double size = 0;
    bool operator==(const Item&) const = default;
};

const std::vector<ListColumn<Item>>& itemColumns() {
    using enum TableColumn::Align;
    static const std::vector<ListColumn<Item>> columns{
        {{"name", "Name", "", text, 20, TableColumn::Shown::always},
         [](const Item& i) { return QString("item %1").arg(i.id); },
         [](const Item& i) { return SortKey("item " + std::to_string(i.id)); }},
        {{"size", "Size", "", figure, 8, TableColumn::Shown::usually, Qt::DescendingOrder},
         [](const Item& i) { return QString::number(i.size); },
         [](const Item& i) { return SortKey(i.size); },
         [](const Item& i) -> std::optional<CellBar> {
             return CellBar{WidgetKind::disk, i.size / 100};
         }},
        {{"extra", "Extra", "", text, 8, TableColumn::Shown::onRequest},
         [](const Item&) { return QString("extra"); },
         [](const Item&) { return SortKey(); }},
    };
    return columns;
}

RowKey keyOf(const Item& item) { return {static_cast<uint64_t>(item.id), 0}; }

/// A tree of numbers under numbers.
class Tree final : public TableModel {
public:
    struct Row {
        uint64_t id;
        int parent;
    };
    void show(std::vector<Row> rows) {
        rows_ = std::move(rows);
        std::vector<Entry> entries;
        for (const Row& row : rows_) entries.push_back({{row.id, 0}, row.parent});
        arrange(entries);
    }
    uint64_t id(const QModelIndex& index) const { return shown_.at(slot(index)); }
    const TableColumn& column(int) const override { return itemColumns().front(); }
    int columnCount(const QModelIndex& = {}) const override { return 1; }
    QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole ? QVariant(qulonglong(id(index))) : QVariant();
    }

private:
    bool take(size_t slot, size_t entry) override {
        if (shown_.size() <= slot) shown_.resize(slot + 1);
        return std::exchange(shown_[slot], rows_[entry].id) != rows_[entry].id;
    }
    std::vector<Row> rows_;
    std::vector<uint64_t> shown_;
};

/// Every row as "parent/child", from the top down.
void collect(const Tree& tree, const QModelIndex& parent, std::vector<std::pair<uint64_t, int>>& out) {
    const int self = static_cast<int>(out.size()) - 1;
    for (int row = 0; row < tree.rowCount(parent); ++row) {
        const QModelIndex index = tree.index(row, 0, parent);
        out.emplace_back(tree.id(index), parent.isValid() ? self : -1);
        collect(tree, index, out);
    }
}

TEST(TableModel, AnyTreeBecomesAnyOtherInPlace) {
    std::mt19937 random(7);
    Tree tree;
    QAbstractItemModelTester tester(&tree, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy resets(&tree, &QAbstractItemModel::modelReset);
    std::map<uint64_t, QPersistentModelIndex> held;
    for (int round = 0; round < 300; ++round) {
        // Few changes on most rounds, another tree on some.
        std::vector<uint64_t> ids;
        const bool wild = round % 5 == 0;
        for (uint64_t id = 0; id < 60; ++id)
            if (random() % (wild ? 2 : 30) != 0) ids.push_back(id);
        if (round % 3 != 0) std::shuffle(ids.begin(), ids.end(), random);
        std::vector<Tree::Row> rows;
        const std::function<void(int, size_t, size_t)> build = [&](int parent, size_t from, size_t to) {
            while (from < to) {
                const size_t children = (wild ? random() : from * 7) % 4;
                const size_t end = std::min(to, from + 1 + children);
                rows.push_back({ids[from], parent});
                build(static_cast<int>(rows.size()) - 1, from + 1, end);
                from = end;
            }
        };
        build(-1, 0, ids.size());
        tree.show(rows);

        std::vector<std::pair<uint64_t, int>> shown;
        collect(tree, {}, shown);
        ASSERT_EQ(shown.size(), rows.size());
        for (size_t i = 0; i < rows.size(); ++i) {
            ASSERT_EQ(shown[i].first, rows[i].id) << "round " << round;
            ASSERT_EQ(shown[i].second, rows[i].parent) << "round " << round;
        }
        for (const auto& [id, index] : held)
            if (index.isValid()) {
                ASSERT_EQ(tree.id(index), id) << "an index went over to another row";
            } else {
                ASSERT_FALSE(std::find(ids.begin(), ids.end(), id) != ids.end() &&
                             tree.find({id, 0}) == QModelIndex());
            }
        held.clear();
        for (const uint64_t id : ids) held[id] = tree.find({id, 0});
    }
    EXPECT_EQ(resets.count(), 0);
}

TEST(TableModel, RowsWithOneKeyAreAllShown) {
    ListModel<Item> model(itemColumns(), keyOf);
    model.setRows({{1, 5}, {1, 6}, {2, 7}});
    EXPECT_EQ(model.rowCount(), 3);
    model.setRows({{1, 6}});
    EXPECT_EQ(model.rowCount(), 1);
}

TEST(TableView, SelectionStaysWithItsRowWhileRowsMoveAndVanish) {
    ListModel<Item> model(itemColumns(), keyOf);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    TableView view("selection");
    view.show(model, 1, Qt::DescendingOrder);
    model.setRows({{1, 10}, {2, 20}, {3, 30}});
    view.setCurrentIndex(model.find({2, 0}));
    ASSERT_EQ(view.selectedText(), "item 2\t20");
    model.setRows({{1, 50}, {2, 40}, {4, 45}});
    EXPECT_EQ(view.selectedText(), "item 2\t40");
    EXPECT_EQ(view.currentIndex().row(), 2);
    EXPECT_EQ(model.index(0, 0).data(), "item 1");
    model.setRows({{1, 50}});
    EXPECT_EQ(view.selectedText(), "") << "nobody else is selected in the place of a row that went";
}

TEST(TableView, CopiesTheRowsInTheirOrderOnScreen) {
    ListModel<Item> model(itemColumns(), keyOf);
    TableView view("copy");
    view.show(model, 0, Qt::AscendingOrder);
    model.setRows({{10, 1}, {9, 2}, {2, 3}});
    view.selectAll();
    view.header()->moveSection(1, 0);
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "3\titem 2\n2\titem 9\n1\titem 10")
        << "numbers in names by value, the hidden column left out";
}

TEST(TableView, WhatWasArrangedComesBack) {
    ListModel<Item> model(itemColumns(), keyOf);
    {
        TableView view("kept");
        view.show(model, 1, Qt::DescendingOrder);
        EXPECT_TRUE(view.isColumnHidden(2));
        view.header()->moveSection(1, 0);
        view.header()->resizeSection(1, 123);
        view.showColumn(2, true);
        view.sortByColumn(2, Qt::AscendingOrder);
    }
    TableView view("kept");
    view.show(model, 1, Qt::DescendingOrder);
    EXPECT_EQ(view.header()->visualIndex(1), 0);
    EXPECT_EQ(view.columnWidth(1), 123);
    EXPECT_FALSE(view.isColumnHidden(2));
    EXPECT_EQ(view.header()->sortIndicatorSection(), 2);
    EXPECT_EQ(view.header()->sortIndicatorOrder(), Qt::AscendingOrder);
}

TEST(SortKey, UnknownComesLastInBothDirections) {
    for (const auto order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        EXPECT_LT(compare(SortKey(1.0), SortKey(), order), 0);
        EXPECT_GT(compare(SortKey(std::string_view("")), SortKey(std::string_view("a")), order), 0);
    }
    EXPECT_LT(compare(SortKey("eth2"), SortKey("eth10"), Qt::AscendingOrder), 0);
    EXPECT_LT(compare(SortKey("alpha"), SortKey("Beta"), Qt::AscendingOrder), 0);
    EXPECT_GT(compare(SortKey(1.0), SortKey(2.0), Qt::DescendingOrder), 0);
}

} // namespace
} // namespace quarn::testing
