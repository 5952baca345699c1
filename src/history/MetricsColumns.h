#pragma once

#include "history/AppMetrics.h"
#include "history/SystemMetrics.h"

#include <array>
#include <string_view>
#include <variant>

namespace quarn {

/// How a column combines when two rows of the same period, or of parts of one, become one row.
enum class MetricsMerge { sum, max, latest };

struct MetricsColumn {
    std::string_view name;
    MetricsMerge merge;
};

/// One column of the database and the field that it keeps: the tables of columns below are what the schema,
/// writing, reading and merging are made from.
template <class Metrics>
struct MetricsField {
    using Member = std::variant<double Metrics::*, int64_t Metrics::*, std::string Metrics::*>;

    MetricsColumn column;
    Member member;
};

template <class Metrics>
struct MetricsFields;

template <>
struct MetricsFields<SystemMetrics> {
    using M = SystemMetrics;
    static constexpr std::array<MetricsField<M>, 12> all{{
        {{"seconds", MetricsMerge::sum}, &M::seconds},
        {{"cpu_seconds", MetricsMerge::sum}, &M::cpuSeconds},
        {{"peak_cpu_percent", MetricsMerge::max}, &M::peakCPUPercent},
        {{"mem_byte_seconds", MetricsMerge::sum}, &M::memoryByteSeconds},
        {{"peak_mem_bytes", MetricsMerge::max}, &M::peakMemoryBytes},
        {{"peak_swap_bytes", MetricsMerge::max}, &M::peakSwapBytes},
        {{"disk_read_bytes", MetricsMerge::sum}, &M::diskReadBytes},
        {{"disk_write_bytes", MetricsMerge::sum}, &M::diskWriteBytes},
        {{"net_in_bytes", MetricsMerge::sum}, &M::networkInBytes},
        {{"net_out_bytes", MetricsMerge::sum}, &M::networkOutBytes},
        {{"energy_joules", MetricsMerge::sum}, &M::energyJoules},
        {{"power_seconds", MetricsMerge::sum}, &M::powerSeconds},
    }};
};

template <>
struct MetricsFields<AppMetrics> {
    using M = AppMetrics;
    static constexpr std::array<MetricsField<M>, 12> all{{
        {{"name", MetricsMerge::latest}, &M::name},
        {{"seconds", MetricsMerge::sum}, &M::seconds},
        {{"cpu_seconds", MetricsMerge::sum}, &M::cpuSeconds},
        {{"mem_byte_seconds", MetricsMerge::sum}, &M::memoryByteSeconds},
        {{"peak_mem_bytes", MetricsMerge::max}, &M::peakMemoryBytes},
        {{"disk_read_bytes", MetricsMerge::sum}, &M::diskReadBytes},
        {{"disk_write_bytes", MetricsMerge::sum}, &M::diskWriteBytes},
        {{"energy_impact", MetricsMerge::sum}, &M::energyImpact},
        {{"net_in_bytes", MetricsMerge::sum}, &M::networkInBytes},
        {{"net_out_bytes", MetricsMerge::sum}, &M::networkOutBytes},
        {{"energy_joules", MetricsMerge::sum}, &M::energyJoules},
        {{"energy_seconds", MetricsMerge::sum}, &M::energySeconds},
    }};
};

/// Merges a part of a period, or another period, into `total`, as SQL does for stored rows. Of names the
/// greatest is taken, since rows have no order of arrival.
template <class Metrics>
void mergeInto(Metrics& total, const Metrics& part);

/// The same for the values of one column.
void mergeField(double& total, double part, MetricsMerge merge);
void mergeField(int64_t& total, int64_t part, MetricsMerge merge);

extern template void mergeInto(SystemMetrics&, const SystemMetrics&);
extern template void mergeInto(AppMetrics&, const AppMetrics&);

} // namespace quarn
