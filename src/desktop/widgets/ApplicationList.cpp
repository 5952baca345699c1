#include "desktop/widgets/ApplicationList.h"

#include "desktop/Text.h"
#include "ui/modules/HistoryText.h"

#include <algorithm>
#include <array>

namespace quarn::desktop {

namespace {

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
    setColumns(columnsOf(order_, say("CPU"), say("Memory")));
    const std::array fields{order_, order_ == AppField::cpu ? AppField::memory : AppField::cpu};
    const auto apps = topApps(list, order_, known, rowCount);
    // The longest bar is the largest share, but no less than one core.
    std::array<double, 2> longest{};
    for (size_t i = 0; i < fields.size(); ++i) {
        longest[i] = fields[i] == AppField::cpu ? 100 : 1;
        for (const auto* app : apps) {
            const double number = appNumber({app}, fields[i], known);
            if (number > longest[i]) longest[i] = number;
        }
    }
    std::vector<Row> shown;
    for (const auto* app : apps) {
        Row row{toQt(app->name),
                app->processCount > 1 ? say("%1 processes").arg(app->processCount) : QString(),
                {},
                {}};
        for (size_t i = 0; i < fields.size(); ++i) {
            const double number = appNumber({app}, fields[i], known);
            QString text = toQt(shownAppField({app}, fields[i], known, style));
            if (fields[i] == AppField::cpu && number >= 0) text += " %";
            row.cells.push_back({text, number > 0 ? number / longest[i] : 0});
        }
        shown.push_back(std::move(row));
    }
    show(shown);
}

void ApplicationList::refresh(const std::vector<AppTotal>& totals) {
    setEmptyText(say("The next minutes will be shown here"));
    setColumns(columnsOf(order_, say("CPU time"), say("Memory")));
    std::array fields{AppHistoryMetric::cpu, AppHistoryMetric::memory};
    if (order_ == AppField::memory) std::swap(fields[0], fields[1]);
    std::array<double, 2> longest{};
    for (const AppTotal& total : totals)
        for (size_t i = 0; i < fields.size(); ++i)
            longest[i] = std::max(longest[i], rankOf(total.metrics, fields[i]));
    std::vector<Row> shown;
    for (const AppTotal& total : totals) {
        Row row{toQt(appName(total)), {}, {}, {}};
        for (size_t i = 0; i < fields.size(); ++i) {
            const double amount = rankOf(total.metrics, fields[i]);
            row.cells.push_back(
                {toQt(amountText(total.metrics, fields[i])), amount > 0 ? amount / longest[i] : 0});
        }
        shown.push_back(std::move(row));
    }
    show(shown);
}

} // namespace quarn::desktop
