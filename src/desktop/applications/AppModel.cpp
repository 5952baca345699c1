#include "desktop/applications/AppModel.h"

#include "desktop/Icon.h"
#include "desktop/Text.h"
#include "desktop/processes/ApplicationIcons.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quarn::desktop {

namespace {

constexpr auto figureAlign = TableColumn::Align::figure;
constexpr auto usuallyShown = TableColumn::Shown::usually;
constexpr auto whenRoomShown = TableColumn::Shown::whenRoom;
constexpr auto downwards = Qt::DescendingOrder;

/// In the order of AppField.
const std::array<TableColumn, appFieldCount> appColumns{{
    {"name", "Name", "The application, as the desktop's menus or the system name it",
     TableColumn::Align::text, 22, TableColumn::Shown::always},
    {"cpu", "CPU %", "Processor time; 100 is one core fully used", figureAlign, 8, usuallyShown, downwards},
    {"memory", "Memory", "Memory of their own: what would be free if they ended", figureAlign, 9,
     usuallyShown, downwards},
    {"disk", "Disk", "Bytes a second that came from a disk or went to one", figureAlign, 9, usuallyShown,
     downwards},
    {"network", "Network", "Bytes a second, received and sent", figureAlign, 10, usuallyShown, downwards},
    {"energy", "Power", "What they draw, as the kernel tells of their processes", figureAlign, 8,
     usuallyShown, downwards},
    {"processes", "Processes", "", figureAlign, 9, usuallyShown, downwards},
    {"threads", "Threads", "", figureAlign, 8, whenRoomShown, downwards},
}};

AppField appFieldOf(int section) { return static_cast<AppField>(section); }

RowKey keyOf(const AppRow& row) {
    if (row.process) return {static_cast<uint64_t>(row.process->pid), 0};
    return RowKey::of((row.app->bundle ? "bundle " : "program ") + std::string(historyKey(*row.app)));
}

bool isSame(const ResourceUsage& a, const ResourceUsage& b) {
    return a.cpuPercent == b.cpuPercent && a.threads == b.threads && a.memBytes == b.memBytes &&
           a.diskRead == b.diskRead && a.diskWrite == b.diskWrite &&
           a.network.download == b.network.download && a.network.upload == b.network.upload &&
           a.watts == b.watts && a.known.measured == b.known.measured && a.known.disk == b.known.disk &&
           a.known.network == b.known.network;
}

/// Whether two rows of one application or process look the same.
bool looksSame(const AppRow& a, const AppRow& b) {
    return a.isMatch == b.isMatch && a.name() == b.name() && a.app->processCount == b.app->processCount &&
           isSame(a.usage(), b.usage());
}

bool isNothing(const AppRow& row, AppField field, const Known& known) {
    constexpr double leastShown = 0.05; // percent; of bytes and watts it is nothing either
    const bool isUse = field == AppField::cpu || field == AppField::disk || field == AppField::network ||
                       field == AppField::energy;
    return isUse && !(appNumber(row, field, known) >= leastShown);
}

} // namespace

AppModel::AppModel(QObject* parent)
    : TableModel(parent), icons_(ApplicationIcons::shared()), plainIcon_(icon("program")) {
    connect(&icons_, &ApplicationIcons::arrived, this, [this] {
        if (rowCount() > 0) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0));
    });
}

void AppModel::take(std::shared_ptr<const ResourceAppList> list, const Known& known, const AppStyle& style) {
    const bool isOtherStyle = style != style_ || known.processRates != rows_.known().processRates;
    style_ = style;
    rows_.take(std::move(list), known);
    show();
    if (isOtherStyle) repaint({});
}

/// All rows below `parent`, since other texts stand in them.
void AppModel::repaint(const QModelIndex& parent) {
    const int rows = rowCount(parent);
    if (rows == 0) return;
    Q_EMIT dataChanged(index(0, 0, parent), index(rows - 1, columnCount() - 1, parent));
    for (int row = 0; row < rows; ++row) repaint(index(row, 0, parent));
}

void AppModel::setSearch(const QString& search) {
    view_.search = search.toStdString();
    show();
}

void AppModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= columnCount()) return;
    view_.sortedBy = appFieldOf(column);
    view_.direction =
        order == Qt::DescendingOrder ? AppView::Direction::descending : AppView::Direction::ascending;
    show();
}

void AppModel::show() {
    latest_ = rows_.rows(view_);
    entries_.clear();
    for (const AppRow& row : latest_) entries_.push_back({keyOf(row), row.parent});
    arrange(entries_);
}

bool AppModel::take(size_t slot, size_t entry) {
    if (shown_.size() <= slot) shown_.resize(slot + 1);
    AppRow& shown = shown_[slot];
    const AppRow& latest = latest_[entry];
    const bool changed = !shown.app || !looksSame(shown, latest);
    shown = latest;
    return changed;
}

const TableColumn& AppModel::column(int section) const { return appColumns[static_cast<size_t>(section)]; }

int AppModel::columnCount(const QModelIndex&) const { return static_cast<int>(appFieldCount); }

QVariant AppModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role == Qt::ToolTipRole && appFieldOf(section) == AppField::cpu && style_.wholeMachine > 0)
        return say("Processor time; 100 is every core fully used");
    return TableModel::headerData(section, orientation, role);
}

QVariant AppModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const AppRow& row = shown_[slot(index)];
    const AppField field = appFieldOf(index.column());
    switch (role) {
    case Qt::DisplayRole: return toQt(shownAppField(row, field, rows_.known(), style_));
    case Qt::TextAlignmentRole: return headerData(index.column(), Qt::Horizontal, role);
    case Qt::ToolTipRole: return toolTip(row, field);
    case Qt::DecorationRole: return field == AppField::name ? picture(row) : QVariant();
    case TableRole::dim: return !row.isMatch || isNothing(row, field, rows_.known());
    case TableRole::barShare: return barShare(row, field);
    case TableRole::barKind:
        return static_cast<int>(field == AppField::cpu ? WidgetKind::cpu : WidgetKind::memory);
    default: return {};
    }
}

QVariant AppModel::toolTip(const AppRow& row, AppField field) const {
    if (const auto why = whyUnknown(row, field, rows_.known()); !why.empty()) return say(why);
    if (field != AppField::name) return {};
    if (row.process) return row.process->path.empty() ? QVariant() : toQt(row.process->path);
    return row.app->bundle ? toQt(*row.app->bundle) : say("Programs that belong to no application");
}

/// That of the application, or of the first of its programs that has one, or else one for all.
QVariant AppModel::picture(const AppRow& row) const {
    if (icons_.empty()) return {};
    if (row.process) return QIcon(); // an empty one, so that its name stands below the application's
    const QIcon* picture = row.app->bundle ? icons_.find(*row.app->bundle) : nullptr;
    for (size_t i = 0; !picture && i < row.app->processes.size(); ++i)
        picture = icons_.find(row.app->processes[i].path);
    return picture ? *picture : plainIcon_;
}

/// Bars are there to compare rows: of CPU the busiest application, but no less than a core, is the whole.
QVariant AppModel::barShare(const AppRow& row, AppField field) const {
    if (field != AppField::cpu && field != AppField::memory) return {};
    const double number = appNumber(row, field, rows_.known());
    const double whole = std::max(rows_.largest(field), field == AppField::cpu ? 100.0 : 1.0);
    return std::isnan(number) ? QVariant() : QVariant(number / whole);
}

} // namespace quarn::desktop
