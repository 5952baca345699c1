#pragma once

#include "desktop/widgets/TableModel.h"
#include "ui/modules/SensorSections.h"

#include <optional>

namespace quarn::desktop {

/// Sensors under the parts of the machine that they belong to. Sorting keeps the parts in their order.
class SensorModel final : public TableModel {
    Q_OBJECT
public:
    using TableModel::TableModel;

    /// Brings the tree up to date.
    void setSections(const std::vector<SensorSection>& sections, const ReadingStyle& style);

    const TableColumn& column(int section) const override;
    int columnCount(const QModelIndex& = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

protected:
    bool take(size_t slot, size_t entry) override;

private:
    struct Row {
        std::optional<size_t> section; ///< of a heading: its place among the sections
        std::string title;             ///< of a heading
        char kind = 'T';
        SensorRow sensor;
        ReadingStyle style;

        bool operator==(const Row&) const = default;
    };

    void arrangeRows();
    static QString text(const Row& row, int column);
    static SortKey sortKey(const SensorRow& sensor, int column);
    static std::optional<double> barShare(const Row& row);

    std::vector<SensorSection> sections_;
    ReadingStyle style_;
    std::vector<Row> latest_; ///< by entry
    std::vector<Row> shown_;  ///< by slot
    int sortColumn_ = 0;
    Qt::SortOrder order_ = Qt::AscendingOrder;
};

} // namespace quarn::desktop
