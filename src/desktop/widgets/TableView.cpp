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

namespace quarn::desktop {

namespace {

constexpr int cellPadding = 16;
constexpr int narrowest = 36;
constexpr int savingDelay = 500; // ms: dragging an edge is one change

} // namespace

TableView::TableView(const QString& name, Shape shape, QWidget* parent)
    : QTreeView(parent), name_("tables/" + name), saving_(new QTimer(this)) {
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
        if (section == 0) leastFirstWidth_ = size;
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

void TableView::arrangeAsBuilt() {
    const int digit = fontMetrics().horizontalAdvance('0');
    leastFirstWidth_ = 0;
    for (int section = 0; section < table_->columnCount(); ++section) {
        const TableColumn& column = table_->column(section);
        header()->moveSection(header()->visualIndex(section), section);
        header()->resizeSection(section, column.width * digit + cellPadding);
        header()->setSectionHidden(section, column.shown == TableColumn::Shown::onRequest);
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
        header()->resizeSection(section, stored.width);
        if (section == 0) leastFirstWidth_ = stored.width;
        header()->setSectionHidden(section,
                                   section != 0 && stored.visible == TableLayout::Column::Visible::no);
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
    using Visible = TableLayout::Column::Visible;
    TableLayout layout;
    for (int place = 0; place < header()->count(); ++place) {
        const int section = header()->logicalIndex(place);
        const bool hidden = header()->isSectionHidden(section);
        // A hidden section has no width; what it had before is kept by the header.
        int width = header()->sectionSize(section);
        if (section == 0 && leastFirstWidth_ > 0) width = leastFirstWidth_;
        if (hidden)
            width = table_->column(section).width * fontMetrics().horizontalAdvance('0') + cellPadding;
        layout.columns.push_back(
            {table_->column(section).id, std::max(width, 1), hidden ? Visible::no : Visible::yes});
    }
    if (const int section = header()->sortIndicatorSection(); section >= 0 && section < table_->columnCount())
        layout.sortedBy = table_->column(section).id;
    if (header()->sortIndicatorOrder() == Qt::DescendingOrder)
        layout.direction = TableLayout::Direction::descending;
    UiState::setText(name_, QString::fromStdString(layout.text()));
}

/// Gives the first column what the others leave, never less than the user gave it.
void TableView::fillWidth() {
    if (!table_ || arranging_) return;
    const QScopedValueRollback guard(arranging_, true);
    int others = 0;
    for (int section = 1; section < header()->count(); ++section) others += header()->sectionSize(section);
    const int built = table_->column(0).width * fontMetrics().horizontalAdvance('0') + cellPadding;
    const int least = leastFirstWidth_ > 0 ? std::min(leastFirstWidth_, built) : built;
    header()->resizeSection(0, std::max({viewport()->width() - others, least, leastFirstWidth_}));
}

void TableView::chooseColumns(const QPoint& at) {
    QMenu menu;
    for (int section = 0; section < table_->columnCount(); ++section) {
        const TableColumn& column = table_->column(section);
        if (column.shown == TableColumn::Shown::always || section == 0) continue;
        QAction* action = menu.addAction(say(column.title));
        action->setCheckable(true);
        action->setChecked(!header()->isSectionHidden(section));
        connect(action, &QAction::toggled, this, [this, section](bool shown) {
            header()->setSectionHidden(section, !shown);
            fillWidth();
            saveSoon();
        });
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

void TableView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        if (const QString text = selectedText(); !text.isEmpty()) QApplication::clipboard()->setText(text);
        return;
    }
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
