#pragma once

#include "desktop/widgets/Card.h"
#include "ui/modules/HistorySeries.h"
#include "ui/modules/HistoryText.h"
#include "ui/modules/ReadingStyle.h"

namespace quarn::desktop {

class ElidedLabel;
class Figure;
class HistoryChart;

/// One kind of reading over a span of the past: its total, how it compares with the span before, its chart.
class HistoryCard : public Card {
    Q_OBJECT
public:
    explicit HistoryCard(WidgetKind kind, int chartHeight, QWidget* parent = nullptr);

    WidgetKind kind() const { return kind_; }
    /// `memory`: bytes that the machine has, the top of that chart; 0 when it is not known.
    void show(const HistoryAnswer& answer, const HistoryTotal& total, const ReadingStyle& style,
              uint64_t memory);

private:
    WidgetKind kind_;
    Figure* figure_;
    ElidedLabel* meaning_;
    HistoryChart* chart_;
};

} // namespace quarn::desktop
