#include "desktop/widgets/SensorModel.h"

#include "desktop/Text.h"

#include <QFont>
#include <algorithm>

namespace quarn::desktop {

namespace {

enum Column { nameColumn, valueColumn, maxColumn, criticalColumn, keyColumn };

constexpr double hot = 100; ///< °C, the length of a full bar where a sensor names no limit

const std::vector<TableColumn>& columns() {
    using Align = TableColumn::Align;
    using Shown = TableColumn::Shown;
    constexpr auto down = Qt::DescendingOrder;
    static const std::vector<TableColumn> table{
        {"name", "Sensor", "", Align::text, 24, Shown::always},
        {"value", "Value", "", Align::figure, 12, Shown::usually, down},
        {"max", "Maximum", "What the sensor should not exceed, as its driver tells", Align::figure, 10,
         Shown::usually, down},
        {"critical", "Critical", "Where the machine protects itself, as its driver tells", Align::figure, 10,
         Shown::usually, down},
        {"key", "Key", "The sensor's name in exports and in the command line", Align::text, 6,
         Shown::onRequest},
    };
    return table;
}

} // namespace

const TableColumn& SensorModel::column(int section) const { return columns()[static_cast<size_t>(section)]; }
int SensorModel::columnCount(const QModelIndex&) const { return static_cast<int>(columns().size()); }

void SensorModel::setSections(const std::vector<SensorSection>& sections, const ReadingStyle& style) {
    if (sections == sections_ && style == style_) return;
    sections_ = sections;
    style_ = style;
    arrangeRows();
}

void SensorModel::sort(int column, Qt::SortOrder order) {
    sortColumn_ = column;
    order_ = order;
    arrangeRows();
}

void SensorModel::arrangeRows() {
    latest_.clear();
    std::vector<Entry> entries;
    for (size_t i = 0; i < sections_.size(); ++i) {
        const SensorSection& section = sections_[i];
        const int heading = static_cast<int>(entries.size());
        entries.push_back({RowKey::of("part " + std::string(section.title)), -1});
        latest_.push_back({i, std::string(section.title), section.kind, {}, style_});
        std::vector<const SensorRow*> sensors;
        for (const SensorRow& sensor : section.rows) sensors.push_back(&sensor);
        std::stable_sort(sensors.begin(), sensors.end(), [this](const SensorRow* a, const SensorRow* b) {
            return compare(sortKey(*a, sortColumn_), sortKey(*b, sortColumn_), order_) < 0;
        });
        for (const SensorRow* sensor : sensors) {
            entries.push_back({RowKey::of(sensor->key), heading});
            latest_.push_back({{}, {}, section.kind, *sensor, style_});
        }
    }
    arrange(entries);
}

bool SensorModel::take(size_t slot, size_t entry) {
    if (shown_.size() <= slot) shown_.resize(slot + 1);
    if (shown_[slot] == latest_[entry]) return false;
    shown_[slot] = latest_[entry];
    return true;
}

SortKey SensorModel::sortKey(const SensorRow& sensor, int column) {
    switch (column) {
    case valueColumn: return sensor.value.value_or(SortKey::unknown);
    case maxColumn: return sensor.max.value_or(SortKey::unknown);
    case criticalColumn: return sensor.critical.value_or(SortKey::unknown);
    case keyColumn: return std::string_view(sensor.key);
    default: return std::string_view(sensor.name);
    }
}

QString SensorModel::text(const Row& row, int column) {
    if (row.section) return column == nameColumn ? say(row.title) : QString();
    const SensorKind& kind = sensorKind(row.kind);
    const auto limit = [&](const std::optional<double>& value) {
        // Of other kinds none is expected.
        return value || row.kind == 'T' ? toQt(sensorFigure(value, kind, row.style)) : QString();
    };
    switch (column) {
    case valueColumn: return toQt(sensorFigure(row.sensor.value, kind, row.style));
    case maxColumn: return limit(row.sensor.max);
    case criticalColumn: return limit(row.sensor.critical);
    case keyColumn: return toQt(row.sensor.key);
    default: return toQt(row.sensor.name);
    }
}

std::optional<double> SensorModel::barShare(const Row& row) {
    if (row.section || row.kind != 'T' || !row.sensor.value) return {};
    const double top = row.sensor.critical.value_or(row.sensor.max.value_or(hot));
    return top > 0 ? std::optional(std::clamp(*row.sensor.value / top, 0.0, 1.0)) : std::nullopt;
}

QVariant SensorModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Row& row = shown_[slot(index)];
    switch (role) {
    case Qt::DisplayRole: return text(row, index.column());
    case Qt::TextAlignmentRole: return headerData(index.column(), Qt::Horizontal, role);
    case Qt::FontRole:
        if (row.section) {
            QFont font;
            font.setWeight(QFont::DemiBold);
            return font;
        }
        return {};
    case Qt::ToolTipRole:
        if (index.column() == valueColumn && !row.sensor.reason.empty()) return say(row.sensor.reason);
        return {};
    case TableRole::barShare:
        if (index.column() != valueColumn) return {};
        if (const auto share = barShare(row)) return *share;
        return {};
    case TableRole::barKind: return static_cast<int>(WidgetKind::temperature);
    default: return {};
    }
}

} // namespace quarn::desktop
