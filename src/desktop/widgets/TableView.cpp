#include "desktop/widgets/TableView.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/UiState.h"
#include "desktop/widgets/BarDelegate.h"
#include "desktop/widgets/TableModel.h"
#include "ui/modules/TableLayout.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScopedValueRollback>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace quarn::desktop {

namespace {

constexpr int cellPadding = 16;
constexpr int narrowest = 36;
constexpr int savingDelay = 500; // ms: dragging an edge is one change

/// Titles aligned as their columns, the sorted one with an arrow that points the way the values grow.
class TableHeader final : public QHeaderView {
public:
    explicit TableHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
        setSectionsClickable(true);
        setMouseTracking(true);
    }

protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override {
        const auto& theme = Theme::current();
        const bool isSorted = isSortIndicatorShown() && sortIndicatorSection() == section;
        painter->fillRect(rect, theme.surface());
        if (viewport()->underMouse() && rect.contains(viewport()->mapFromGlobal(QCursor::pos())))
            painter->fillRect(rect, QColor(128, 128, 128, 24));
        painter->fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), theme.line());

        constexpr int padding = 6, arrow = 8;
        QRect room = rect.adjusted(padding, 0, -padding, -1);
        const auto alignment =
            Qt::Alignment(model()->headerData(section, orientation(), Qt::TextAlignmentRole).toInt());
        const bool atRight = alignment.testFlag(Qt::AlignRight);
        if (isSorted)
            atRight ? room.setLeft(room.left() + arrow + 4) : room.setRight(room.right() - arrow - 4);
        const QString title = fontMetrics().elidedText(model()->headerData(section, orientation()).toString(),
                                                       Qt::ElideRight, room.width());
        painter->setPen(isSorted ? theme.text() : theme.dim());
        painter->drawText(room, static_cast<int>(alignment) | Qt::TextSingleLine, title);
        if (!isSorted) return;
        const int width = fontMetrics().horizontalAdvance(title);
        const double x = atRight ? room.right() - width - 4 - arrow : room.left() + width + 4;
        const double y = rect.center().y();
        const double up = sortIndicatorOrder() == Qt::AscendingOrder ? 1 : -1;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(theme.accent());
        painter->drawPolygon(
            QPolygonF{{x, y + 2.5 * up}, {x + arrow, y + 2.5 * up}, {x + arrow / 2.0, y - 2.5 * up}});
        painter->restore();
    }

    bool viewportEvent(QEvent* event) override {
        if (event->type() == QEvent::MouseMove || event->type() == QEvent::Leave) viewport()->update();
        return QHeaderView::viewportEvent(event);
    }
};

} // namespace

TableView::TableView(const QString& name, Shape shape, QWidget* parent)
    : QTreeView(parent), name_("tables/" + name), saving_(new QTimer(this)) {
    setHeader(new TableHeader(this));
    setItemDelegate(new BarDelegate(this));
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setExpandsOnDoubleClick(false);
    setTextElideMode(Qt::ElideRight);
    setMouseTracking(true);
    setIndentation(16);
    setShape(shape);

    header()->setStretchLastSection(false);
    header()->setSectionsMovable(true);
    header()->setFirstSectionMovable(true);
    header()->setMinimumSectionSize(narrowest);
    header()->setHighlightSections(false);
    header()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header(), &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { chooseColumns(header()->mapToGlobal(at)); });
    connect(header(), &QHeaderView::sectionResized, this, [this](int section, int, int size) {
        if (arranging_) return;
        columns_[static_cast<size_t>(section)].width = size;
        fillWidth();
        saveSoon();
    });
    connect(header(), &QHeaderView::sectionMoved, this, [this] { saveSoon(); });
    connect(header(), &QHeaderView::sortIndicatorChanged, this, [this] { saveSoon(); });
    saving_->setSingleShot(true);
    saving_->setInterval(savingDelay);
    connect(saving_, &QTimer::timeout, this, [this] { save(); });
    connect(&Theme::current(), &Theme::changed, viewport(), qOverload<>(&QWidget::update));
}

TableView::~TableView() {
    if (saving_->isActive()) save();
}

void TableView::show(TableModel& model, int sortColumn, Qt::SortOrder order) {
    builtSortColumn_ = sortColumn;
    builtOrder_ = order;
    table_ = &model;
    columns_.clear();
    for (int section = 0; section < model.columnCount(); ++section)
        columns_.push_back({model.column(section)});
    // Before the view and its header hear of it and forget their sections.
    connect(&model, &QObject::destroyed, this, [this] {
        if (saving_->isActive()) save();
        table_ = nullptr;
    });
    {
        const QScopedValueRollback guard(arranging_, true);
        setModel(&model);
        arrangeAsBuilt();
        restore(sortColumn, order);
        setSortingEnabled(true);
    }
    saving_->stop();
    fillWidth();
}

void TableView::setShape(Shape shape) {
    setRootIsDecorated(shape == Shape::tree);
    setItemsExpandable(shape == Shape::tree);
}

void TableView::setLeadingColumn(int section) {
    if (const int former = treePosition(); former > 0 && former != section)
        header()->moveSection(header()->visualIndex(former), former);
    setTreePosition(section);
    header()->moveSection(header()->visualIndex(section), 0);
}

void TableView::fitRows() {
    setSizeAdjustPolicy(AdjustToContents);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void TableView::setEmptyText(const QString& text) {
    if (emptyText_ == text) return;
    emptyText_ = text;
    viewport()->update();
}

int TableView::builtWidth(int section) const {
    return columns_[static_cast<size_t>(section)].column.width * fontMetrics().horizontalAdvance('0') +
           cellPadding;
}

int TableView::leastWidth(int section) const {
    const int chosen = columns_[static_cast<size_t>(section)].width;
    return chosen > 0 ? chosen : builtWidth(section);
}

void TableView::arrangeAsBuilt() {
    for (int section = 0; section < table_->columnCount(); ++section) {
        header()->moveSection(header()->visualIndex(section), section);
        Column& column = columns_[static_cast<size_t>(section)];
        column = {.column = column.column,
                  .isWanted = column.column.shown != TableColumn::Shown::onRequest,
                  .whyUnknown = column.whyUnknown};
    }
}

void TableView::restore(int sortColumn, Qt::SortOrder order) {
    const TableLayout layout = TableLayout::fromText(UiState::text(name_).toStdString());
    const auto sectionOf = [&](const std::string& id) {
        for (int section = 0; section < table_->columnCount(); ++section)
            if (id == table_->column(section).id) return section;
        return -1;
    };
    int place = 0;
    for (const auto& stored : layout.columns) {
        const int section = sectionOf(stored.id);
        if (section < 0) continue;
        header()->moveSection(header()->visualIndex(section), place++);
        Column& column = columns_[static_cast<size_t>(section)];
        column.width = stored.width;
        column.isWanted = section == 0 || stored.visible == TableLayout::Column::Visible::yes;
    }
    if (const int section = sectionOf(layout.sortedBy); section >= 0) {
        sortColumn = section;
        order =
            layout.direction == TableLayout::Direction::descending ? Qt::DescendingOrder : Qt::AscendingOrder;
    }
    header()->setSortIndicator(sortColumn, order);
}

void TableView::saveSoon() {
    if (table_ && !arranging_) saving_->start();
}

void TableView::save() const {
    if (static_cast<size_t>(header()->count()) != columns_.size()) return;
    using Visible = TableLayout::Column::Visible;
    TableLayout layout;
    for (int place = 0; place < header()->count(); ++place) {
        const int section = header()->logicalIndex(place);
        const Column& each = columns_[static_cast<size_t>(section)];
        layout.columns.push_back({each.column.id, each.width, each.isWanted ? Visible::yes : Visible::no});
    }
    if (const int section = header()->sortIndicatorSection(); section >= 0 && section < header()->count())
        layout.sortedBy = columns_[static_cast<size_t>(section)].column.id;
    if (header()->sortIndicatorOrder() == Qt::DescendingOrder)
        layout.direction = TableLayout::Direction::descending;
    UiState::setText(name_, QString::fromStdString(layout.text()));
}

/// Every column gets the width that the user gave it or the built-in one; what is left goes to the first and
/// to those that grow. Where there is too little, columns that are shown when there is room go, the last ones
/// first.
void TableView::fillWidth() {
    if (!table_ || arranging_) return;
    const QScopedValueRollback guard(arranging_, true);
    int spare = viewport()->width();
    for (int section = 0; section < header()->count(); ++section) {
        const bool isShown = columns_[static_cast<size_t>(section)].isShown();
        header()->setSectionHidden(section, !isShown);
        if (isShown) spare -= leastWidth(section);
    }
    for (int place = header()->count() - 1; place >= 0 && spare < 0; --place) {
        const int section = header()->logicalIndex(place);
        const Column& each = columns_[static_cast<size_t>(section)];
        const bool maySpare = each.column.shown == TableColumn::Shown::whenRoom && !each.isInsistedOn &&
                              header()->sortIndicatorSection() != section;
        if (!maySpare || header()->isSectionHidden(section)) continue;
        spare += leastWidth(section);
        header()->setSectionHidden(section, true);
    }
    spare = std::max(spare, 0);
    const auto grows = [&](int section) {
        const Column& each = columns_[static_cast<size_t>(section)];
        return section > 0 && each.column.spare == TableColumn::Width::grows && each.width == 0;
    };
    int growing = 1;
    for (int section = 1; section < header()->count(); ++section) growing += grows(section) ? 1 : 0;
    const int share = spare / growing;
    for (int section = header()->count() - 1; section >= 0; --section) {
        if (header()->isSectionHidden(section)) continue;
        const int more = section == 0 ? spare : grows(section) ? share : 0;
        header()->resizeSection(section, leastWidth(section) + more);
        spare -= more;
    }
}

void TableView::showColumn(int section, bool shown) {
    Column& column = columns_[static_cast<size_t>(section)];
    column.isWanted = column.isInsistedOn = shown || section == 0;
    fillWidth();
    saveSoon();
}

void TableView::setColumnUnknown(int section, const QString& why) {
    QString& stored = columns_[static_cast<size_t>(section)].whyUnknown;
    if (std::exchange(stored, why).isEmpty() != why.isEmpty()) fillWidth();
}

void TableView::chooseColumns(const QPoint& at) {
    QMenu menu;
    menu.setToolTipsVisible(true);
    for (int section = 0; section < table_->columnCount(); ++section) {
        const TableColumn& column = table_->column(section);
        if (column.shown == TableColumn::Shown::always || section == 0) continue;
        QAction* action = menu.addAction(say(column.title));
        action->setCheckable(true);
        action->setChecked(!header()->isSectionHidden(section));
        const QString& why = columns_[static_cast<size_t>(section)].whyUnknown;
        action->setEnabled(why.isEmpty());
        action->setToolTip(why);
        connect(action, &QAction::toggled, this, [this, section](bool shown) { showColumn(section, shown); });
    }
    menu.addSeparator();
    connect(menu.addAction(say("Columns as they were built in")), &QAction::triggered, this, [this] {
        {
            const QScopedValueRollback guard(arranging_, true);
            arrangeAsBuilt();
        }
        header()->setSortIndicator(builtSortColumn_, builtOrder_);
        fillWidth();
        saveSoon();
    });
    menu.exec(at);
}

QModelIndexList TableView::selectedRows() const {
    QModelIndexList rows;
    if (!selectionModel()) return rows;
    // From the top of the view down, which for a tree is no order of rows.
    rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [this](const QModelIndex& a, const QModelIndex& b) {
        return visualRect(a).top() < visualRect(b).top();
    });
    return rows;
}

QString TableView::selectedText() const {
    QStringList lines;
    for (const QModelIndex& row : selectedRows()) {
        QStringList cells;
        for (int place = 0; place < header()->count(); ++place) {
            const int section = header()->logicalIndex(place);
            if (!header()->isSectionHidden(section))
                cells.append(row.siblingAtColumn(section).data().toString());
        }
        lines.append(cells.join('\t'));
    }
    return lines.join('\n');
}

void TableView::copySelection() const {
    if (const QString text = selectedText(); !text.isEmpty()) QApplication::clipboard()->setText(text);
}

void TableView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        copySelection();
    else
        QTreeView::keyPressEvent(event);
}

/// A click below the rows selects nothing.
void TableView::mousePressEvent(QMouseEvent* event) {
    if (!indexAt(event->pos()).isValid()) clearSelection();
    QTreeView::mousePressEvent(event);
}

void TableView::resizeEvent(QResizeEvent* event) {
    QTreeView::resizeEvent(event);
    fillWidth();
}

void TableView::drawRow(QPainter* painter, const QStyleOptionViewItem& options,
                        const QModelIndex& index) const {
    const auto& theme = Theme::current();
    const QRect row(0, options.rect.top(), viewport()->width(), options.rect.height());
    if (const QVariant tint = index.siblingAtColumn(0).data(TableRole::tint); tint.isValid())
        painter->fillRect(row, tint.value<QColor>());
    if (selectionModel()->isSelected(index))
        painter->fillRect(row, palette().color(QPalette::Highlight));
    else if (index == hovered_)
        painter->fillRect(row, QColor(theme.text().red(), theme.text().green(), theme.text().blue(), 12));
    QTreeView::drawRow(painter, options, index);
    painter->fillRect(QRect(0, row.bottom(), row.width(), 1), theme.line());
}

void TableView::paintEvent(QPaintEvent* event) {
    // By the place of the pointer, since rows move under it.
    hovered_ = viewport()->underMouse()
                   ? indexAt(viewport()->mapFromGlobal(QCursor::pos())).siblingAtColumn(0)
                   : QModelIndex();
    QTreeView::paintEvent(event);
    if (emptyText_.isEmpty() || !table_ || table_->rowCount() > 0) return;
    QPainter painter(viewport());
    painter.setPen(Theme::current().dim());
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
}

} // namespace quarn::desktop
