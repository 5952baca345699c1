#pragma once

#include "desktop/widgets/RankList.h"
#include "ui/modules/AppRows.h"

namespace quarn {
struct AppTotal;
}

namespace quarn::desktop {

/// The applications that use most of the processor or of the memory, at most `rowCount`.
class ApplicationList : public RankList {
    Q_OBJECT
public:
    /// `order` is AppField::cpu or AppField::memory.
    explicit ApplicationList(AppField order, QWidget* parent = nullptr);

    static constexpr size_t rowCount = 6;

    /// Those that use most now.
    void refresh(const ResourceAppList& list, const Known& known, const AppStyle& style);
    /// Those that used most over some time, the greatest first.
    void refresh(const std::vector<AppTotal>& totals);

private:
    void showCompared(std::vector<Row> rows, std::vector<Column> columns, double leastCpu);

    AppField order_;
};

} // namespace quarn::desktop
