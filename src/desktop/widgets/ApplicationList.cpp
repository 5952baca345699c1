#include "desktop/widgets/ApplicationList.h"

#include "desktop/Text.h"
#include "history/MetricsReads.h"
#include "ui/modules/HistoryText.h"

#include <algorithm>
#include <array>

namespace quarn::desktop {

namespace {

constexpr double wholeCore = 100; ///< percent

std::vector<RankList::Column> columnsOf(AppField order, const QString& cpu, const QString& memory) {
    std::vector<RankList::Column> columns{{cpu, WidgetKind::cpu}, {memory, WidgetKind::memory}};
    if (order == AppField::memory) std::swap(columns[0], columns[1]);
    return columns;
}

} // namespace

ApplicationList::ApplicationList(AppField order, QWidget* parent)
    : RankList(say("Name"), columnsOf(order, say("CPU"), say("Memory")), parent), order_(order) {
    setEmptyText(say("Looking at the processes …"));
}

void ApplicationList::refresh(const ResourceAppList& list, const Known& known, const AppStyle& style) {
    setEmptyText(say("No process could be read"));
    const std::array fields{order_, order_ == AppField::cpu ? AppField::memory : AppField::cpu};
    std::vector<Row> rows;
    for (const auto* app : topApps(list, order_, known, rowCount)) {
        auto& row = rows.emplace_back(Row{toQt(app->name), {}, {}, {}});
        if (app->processCount > 1) row.note = say("%1 processes").arg(app->processCount);
        for (const AppField field : fields) {
            const double number = appNumber({app}, field, known);
            QString text = toQt(shownAppField({app}, field, known, style));
            if (field == AppField::cpu && number >= 0) text += " %";
            row.cells.push_back({text, number});
        }
    }
    showCompared(std::move(rows), columnsOf(order_, say("CPU"), say("Memory")), wholeCore);
}

void ApplicationList::refresh(const std::vector<AppTotal>& totals) {
    setEmptyText(say("The next minutes will be shown here"));
    std::array metrics{AppHistoryMetric::cpu, AppHistoryMetric::memory};
    if (order_ == AppField::memory) std::swap(metrics[0], metrics[1]);
    std::vector<Row> rows;
    for (const AppTotal& total : totals) {
        auto& row = rows.emplace_back(Row{toQt(appName(total)), {}, {}, {}});
        for (const AppHistoryMetric metric : metrics)
            row.cells.push_back({toQt(amountText(total.metrics, metric)), rankOf(total.metrics, metric)});
    }
    showCompared(std::move(rows), columnsOf(order_, say("CPU time"), say("Memory")), 0);
}

/// The share of each cell is its number still, NaN where it is not known. The longest bar of a column is the
/// greatest one's, but no processor time below `leastCpu` fills its cell.
void ApplicationList::showCompared(std::vector<Row> rows, std::vector<Column> columns, double leastCpu) {
    for (size_t i = 0; i < columns.size(); ++i) {
        double longest = columns[i].kind == WidgetKind::cpu ? leastCpu : 0;
        for (const Row& row : rows)
            if (row.cells[i].share > longest) longest = row.cells[i].share;
        for (Row& row : rows) {
            double& share = row.cells[i].share;
            share = share > 0 ? share / longest : 0;
        }
    }
    setColumns(std::move(columns));
    show(rows);
}

} // namespace quarn::desktop
