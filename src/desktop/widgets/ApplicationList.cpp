#include "desktop/widgets/ApplicationList.h"

#include "desktop/Text.h"
#include "ui/modules/Format.h"

#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr size_t rows = 6;

std::vector<RankList::Column> columnsOf(GroupOrder order) {
    std::vector<RankList::Column> columns{{say("CPU"), WidgetKind::cpu}, {say("Memory"), WidgetKind::memory}};
    if (order == GroupOrder::memory) std::swap(columns[0], columns[1]);
    return columns;
}

} // namespace

ApplicationList::ApplicationList(GroupOrder order, QWidget* parent)
    : RankList(say("Name"), columnsOf(order), parent), order_(order) {}

void ApplicationList::refresh(const Snapshot& snapshot, const Known& known, CpuShare share) {
    const auto cores = static_cast<double>(std::max<size_t>(snapshot.cpu.perCore.size(), 1));
    const auto groups = topGroups(snapshot.processes, known, order_, rows);
    // The longest bar is the largest share, but no less than one core.
    double most = 100;
    uint64_t largest = 1;
    for (const auto& group : groups) {
        most = std::max(most, group.cpuPercent.value_or(0));
        largest = std::max(largest, group.memBytes.value_or(0));
    }
    std::vector<Row> list;
    for (const auto& group : groups) {
        const double cpu = group.cpuPercent.value_or(0);
        const double shown = share == CpuShare::ofTheMachine ? cpu / cores : cpu;
        const uint64_t bytes = group.memBytes.value_or(0);
        Row row{toQt(group.name.view()),
                group.processes > 1 ? say("%1 processes").arg(group.processes) : QString(),
                {{toQt(group.cpuPercent ? format::percent(shown) : format::unknown), cpu / most},
                 {toQt(group.memBytes ? format::memory(bytes) : format::unknown),
                  static_cast<double>(bytes) / static_cast<double>(largest)}}};
        if (order_ == GroupOrder::memory) std::swap(row.cells[0], row.cells[1]);
        list.push_back(std::move(row));
    }
    show(list);
}

} // namespace quarn::desktop
