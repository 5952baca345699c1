#include "desktop/processes/ProcessModel.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/processes/ApplicationIcons.h"

#include <array>
#include <cmath>

namespace quarn::desktop {

namespace {

constexpr auto figure = TableColumn::Align::figure;
constexpr auto text = TableColumn::Align::text;
constexpr auto usually = TableColumn::Shown::usually;
constexpr auto whenRoom = TableColumn::Shown::whenRoom;
constexpr auto onRequest = TableColumn::Shown::onRequest;
constexpr auto down = Qt::DescendingOrder;

/// In the order of ProcessField.
const std::array<TableColumn, processFieldCount> columns{{
    {"name", "Name", "The name of the program", text, 18, TableColumn::Shown::always},
    {"pid", "PID", "The number of the process", figure, 7},
    {"user", "User", "On whose behalf it runs", text, 8, whenRoom},
    {"cpu", "CPU %", "Processor time; 100 is one core fully used", figure, 7, usually, down},
    {"memory", "Memory", "Memory of its own: what would be free if it ended", figure, 9, usually, down},
    {"diskRead", "Disk read", "Bytes a second that came from a disk", figure, 9, usually, down},
    {"diskWritten", "Written", "Bytes a second that went to a disk", figure, 9, usually, down},
    {"cpuTime", "CPU time", "Processor time since it started", figure, 8, whenRoom, down},
    {"threads", "Threads", "", figure, 7, whenRoom, down},
    {"switches", "Switches", "Context switches a second, of the main thread", figure, 8, onRequest, down},
    {"state", "State", "", text, 8, onRequest},
    {"started", "Started", "", figure, 16, onRequest, down},
    {"parent", "Parent", "The number of the process that started it", figure, 7, onRequest},
    {"path", "Path", "Where the program lies", text, 40, onRequest},
}};

ProcessField fieldOf(int section) { return static_cast<ProcessField>(section); }

QColor faint(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QVariant tint(const ProcessRow& row) {
    const auto& theme = Theme::current();
    switch (row.life) {
    case ProcessRow::Life::exited:
        return faint(theme.critical(), 0.08 + 0.16 * std::clamp<double>(row.fade, 0, 1));
    case ProcessRow::Life::fresh: return faint(theme.kind(WidgetKind::gpu), 0.20 * row.fade);
    case ProcessRow::Life::running: break;
    }
    return {};
}

/// Whether two rows of one process look the same.
bool looksSame(const ProcessRow& a, const ProcessRow& b) {
    if (a.life != b.life || a.fade != b.fade || a.isMatch != b.isMatch || a.changed != b.changed)
        return false;
    const ProcInfo &p = *a.process, &q = *b.process;
    return p.cpuPercent == q.cpuPercent && p.memBytes == q.memBytes && p.cpuTimeNs == q.cpuTimeNs &&
           p.cswRate == q.cswRate && p.threads == q.threads && p.diskReadRate == q.diskReadRate &&
           p.diskWriteRate == q.diskWriteRate && p.ppid == q.ppid && p.uid == q.uid &&
           p.accessible == q.accessible && p.ioKnown == q.ioKnown && p.name == q.name && p.state == q.state &&
           p.path == q.path;
}

bool isNothing(const ProcInfo& process, ProcessField field) {
    switch (field) {
    case ProcessField::cpu: return process.cpuPercent < 0.05;
    case ProcessField::diskRead: return process.diskReadRate < 0.5;
    case ProcessField::diskWritten: return process.diskWriteRate < 0.5;
    case ProcessField::switches: return process.cswRate < 0.5;
    case ProcessField::path: return true; // beside the figures
    default: return false;
    }
}

} // namespace

RowKey keyOf(const ProcInfo& process) {
    return {static_cast<uint64_t>(process.pid), process.startTimeMicros.value_or(0)};
}

ProcessModel::ProcessModel(QObject* parent) : TableModel(parent), icons_(ApplicationIcons::shared()) {
    connect(&icons_, &ApplicationIcons::arrived, this, [this] {
        if (rowCount() > 0) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0));
    });
}

void ProcessModel::take(const Snapshot& snapshot, const Known& known, const ProcessRows::Marks& marks,
                        double now) {
    rows_.take(snapshot, known, marks, now);
    now_ = snapshot.timestamp;
    uint64_t largest = 1;
    for (const ProcInfo& process : snapshot.processes) largest = std::max(largest, process.memBytes);
    largestMemory_ = static_cast<double>(largest);
    show();
}

void ProcessModel::setSearch(const QString& search) {
    view_.search = search.toStdString();
    show();
}

void ProcessModel::setUser(std::optional<int64_t> user) {
    view_.user = user;
    show();
}

void ProcessModel::setShape(ProcessView::Shape shape) {
    view_.shape = shape;
    show();
}

void ProcessModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= columnCount()) return;
    view_.sortedBy = fieldOf(column);
    view_.direction =
        order == Qt::DescendingOrder ? ProcessView::Direction::descending : ProcessView::Direction::ascending;
    show();
}

void ProcessModel::show() {
    latest_ = rows_.rows(view_);
    entries_.clear();
    for (const ProcessRow& row : latest_) entries_.push_back({keyOf(*row.process), row.parent});
    arrange(entries_);
}

bool ProcessModel::take(size_t slot, size_t entry) {
    if (shown_.size() <= slot) shown_.resize(slot + 1);
    ProcessRow& shown = shown_[slot];
    const ProcessRow& latest = latest_[entry];
    const bool changed = !shown.process || !looksSame(shown, latest);
    shown = latest;
    return changed;
}

const TableColumn& ProcessModel::column(int section) const { return columns[static_cast<size_t>(section)]; }

int ProcessModel::columnCount(const QModelIndex&) const { return static_cast<int>(processFieldCount); }

Qt::ItemFlags ProcessModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = TableModel::flags(index);
    if (!index.isValid() || view_.shape == ProcessView::Shape::tree) return flags;
    return flags | Qt::ItemNeverHasChildren;
}

QVariant ProcessModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const ProcessRow& row = shown_[slot(index)];
    const ProcessField field = fieldOf(index.column());
    switch (role) {
    case Qt::DisplayRole: return toQt(shownField(*row.process, field, rows_.known(), now_));
    case Qt::TextAlignmentRole: return headerData(index.column(), Qt::Horizontal, role);
    case Qt::ToolTipRole: return toolTip(row, field);
    case Qt::DecorationRole: {
        if (field != ProcessField::name || icons_.empty()) return {};
        const QIcon* icon = icons_.find(row.process->path);
        return icon ? *icon : QIcon(); // an empty one keeps the names in line
    }
    case TableRole::tint: return tint(row);
    case TableRole::flash: return row.hasChanged(field) ? QVariant(1.0) : QVariant();
    case TableRole::dim: return !row.isMatch || isNothing(*row.process, field);
    case TableRole::barShare:
        if (const auto share = barShare(*row.process, field)) return *share;
        return {};
    case TableRole::barKind:
        return static_cast<int>(field == ProcessField::cpu ? WidgetKind::cpu : WidgetKind::memory);
    default: return {};
    }
}

QVariant ProcessModel::toolTip(const ProcessRow& row, ProcessField field) const {
    if (const auto why = whyUnknown(*row.process, field, rows_.known()); !why.empty())
        return say(std::string(why).c_str());
    if (field == ProcessField::name && !row.process->path.empty()) return toQt(row.process->path);
    return {};
}

/// Of CPU a core is the whole, of memory the process that uses most: bars are there to compare rows.
std::optional<double> ProcessModel::barShare(const ProcInfo& process, ProcessField field) const {
    if (field != ProcessField::cpu && field != ProcessField::memory) return {};
    const double number = processNumber(process, field, rows_.known());
    if (std::isnan(number)) return {};
    return number / (field == ProcessField::cpu ? 100 : largestMemory_);
}

} // namespace quarn::desktop
