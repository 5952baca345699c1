#include "history/MetricsColumns.h"

#include "history/ByteCount.h"

namespace quarn {

void mergeField(double& total, double part, MetricsMerge merge) {
    total = merge == MetricsMerge::sum ? total + part : std::max(total, part);
}

void mergeField(int64_t& total, int64_t part, MetricsMerge merge) {
    if (merge == MetricsMerge::sum)
        addBytes(total, static_cast<uint64_t>(std::max<int64_t>(part, 0)));
    else
        total = std::max(total, part);
}

namespace {

void mergeField(std::string& total, const std::string& part, MetricsMerge) { total = std::max(total, part); }

} // namespace

template <class Metrics>
void mergeInto(Metrics& total, const Metrics& part) {
    for (const auto& field : MetricsFields<Metrics>::all)
        std::visit([&](auto member) { mergeField(total.*member, part.*member, field.column.merge); },
                   field.member);
}

template void mergeInto(SystemMetrics&, const SystemMetrics&);
template void mergeInto(AppMetrics&, const AppMetrics&);

} // namespace quarn
