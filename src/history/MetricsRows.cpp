#include "history/MetricsRows.h"

#include <algorithm>
#include <cmath>

namespace quarn {

namespace {

/// 70 TB in a minute. SQLite refuses a sum that overflows, and with it every later roll-up: one counter gone
/// mad for a moment would end the history.
constexpr int64_t mostBytesAtOnce = int64_t{1} << 46;

SQLiteBindable boundValue(double value, MetricsMerge) { return std::isfinite(value) ? value : 0.0; }
SQLiteBindable boundValue(int64_t value, MetricsMerge merge) {
    return merge == MetricsMerge::sum ? std::clamp<int64_t>(value, 0, mostBytesAtOnce) : value;
}
SQLiteBindable boundValue(const std::string& value, MetricsMerge) { return std::string_view(value); }

void readValue(const SQLiteStatement& row, int column, double& value) { value = row.real(column); }
void readValue(const SQLiteStatement& row, int column, int64_t& value) { value = row.integer(column); }
void readValue(const SQLiteStatement& row, int column, std::string& value) { value = row.text(column); }

void mergeValue(const SQLiteStatement& row, int column, double& total, MetricsMerge merge) {
    mergeField(total, row.real(column), merge);
}
void mergeValue(const SQLiteStatement& row, int column, int64_t& total, MetricsMerge merge) {
    mergeField(total, row.integer(column), merge);
}
void mergeValue(const SQLiteStatement& row, int column, std::string& total, MetricsMerge) {
    if (const auto text = row.text(column); text > total) total = text;
}

} // namespace

void mergeRow(AppMetrics& total, const SQLiteStatement& statement, int first) {
    for (const auto& field : MetricsFields<AppMetrics>::all)
        std::visit([&](auto member) { mergeValue(statement, first++, total.*member, field.column.merge); },
                   field.member);
}

template <class Metrics>
void bindMetrics(SQLiteStatement& statement, int first, const Metrics& metrics) {
    for (const auto& field : MetricsFields<Metrics>::all)
        std::visit(
            [&](auto member) { statement.bind(first++, boundValue(metrics.*member, field.column.merge)); },
            field.member);
}

template <class Metrics>
Metrics readMetrics(const SQLiteStatement& statement, int first) {
    Metrics metrics;
    for (const auto& field : MetricsFields<Metrics>::all)
        std::visit([&](auto member) { readValue(statement, first++, metrics.*member); }, field.member);
    return metrics;
}

template void bindMetrics(SQLiteStatement&, int, const SystemMetrics&);
template void bindMetrics(SQLiteStatement&, int, const AppMetrics&);
template SystemMetrics readMetrics(const SQLiteStatement&, int);
template AppMetrics readMetrics(const SQLiteStatement&, int);

} // namespace quarn
