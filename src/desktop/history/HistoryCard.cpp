#include "desktop/history/HistoryCard.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/ElidedLabel.h"
#include "desktop/widgets/Figure.h"
#include "desktop/widgets/HistoryChart.h"
#include "ui/modules/Format.h"

#include <QVBoxLayout>
#include <span>

namespace quarn::desktop {

namespace {

constexpr double gibi = 1ull << 30;

/// The lines of a kind.
struct KindLine {
    SystemLine line;
    const char* label;
    bool second;
    Chart::Line::Fill fill = Chart::Line::Fill::below;
};
std::span<const KindLine> linesOf(WidgetKind kind) {
    constexpr auto none = Chart::Line::Fill::none;
    static constexpr KindLine cpu[]{{SystemLine::cpu, "Average", false},
                                    {SystemLine::cpuPeak, "Peak", true, none}};
    static constexpr KindLine memory[]{{SystemLine::memory, "Average", false},
                                       {SystemLine::memoryPeak, "Peak", true, none}};
    static constexpr KindLine disk[]{{SystemLine::diskRead, "Read", false},
                                     {SystemLine::diskWritten, "Written", true}};
    static constexpr KindLine network[]{{SystemLine::received, "Received", false},
                                        {SystemLine::sent, "Sent", true}};
    static constexpr KindLine power[]{{SystemLine::power, "Power", false}};
    switch (kind) {
    case WidgetKind::memory: return memory;
    case WidgetKind::disk: return disk;
    case WidgetKind::network: return network;
    case WidgetKind::power: return power;
    default: return cpu;
    }
}

std::vector<Chart::Line> chartLines(WidgetKind kind) {
    std::vector<Chart::Line> lines;
    for (const auto& each : linesOf(kind)) lines.push_back({say(each.label), kind, each.second, each.fill});
    return lines;
}

Chart::Scale scaleOf(WidgetKind kind, const ReadingStyle& style, uint64_t memory) {
    switch (kind) {
    case WidgetKind::memory:
        return {.full = static_cast<double>(memory),
                .text = [](double bytes) { return toQt(format::memory(static_cast<uint64_t>(bytes))); },
                .perUnit = 1 / gibi};
    case WidgetKind::disk: return {.text = [](double rate) { return toQt(format::rate(rate)); }};
    case WidgetKind::network:
        return {.text = [style](double rate) { return toQt(networkRateText(rate, style)); },
                .perUnit = style.networkInBits ? 8.0 : 1.0};
    case WidgetKind::power: return {.text = [](double watts) { return toQt(format::watts(watts)); }};
    default: return {.full = 100, .text = [](double percent) { return toQt(format::percent(percent)); }};
    }
}

} // namespace

HistoryCard::HistoryCard(WidgetKind kind, int chartHeight, QWidget* parent)
    : Card(say(Reading::title(kind)), parent),
      kind_(kind),
      figure_(new Figure),
      meaning_(new ElidedLabel),
      chart_(new HistoryChart(chartLines(kind), scaleOf(kind, {}, 0))) {
    meaning_->setFont(Theme::captionFont());
    meaning_->setProperty("dim", true);
    auto* total = new QHBoxLayout;
    total->setSpacing(Theme::gap);
    total->addWidget(figure_);
    total->addWidget(meaning_, 1, Qt::AlignBottom);
    content().addLayout(total);
    chart_->setFixedHeight(chartHeight);
    content().addWidget(chart_);
}

void HistoryCard::show(const HistoryAnswer& answer, const HistoryTotal& total, const ReadingStyle& style,
                       uint64_t memory) {
    figure_->setText(toQt(total.figure));
    figure_->setMinimumWidth(figure_->sizeHint().width());
    meaning_->show(toQt(total.meaning));
    setNote(toQt(total.comparison));
    std::vector<SystemLine> lines;
    for (const auto& each : linesOf(kind_)) lines.push_back(each.line);
    chart_->setScale(scaleOf(kind_, style, memory));
    chart_->show(systemSeries(answer, lines), answer.from, answer.to);
}

} // namespace quarn::desktop
