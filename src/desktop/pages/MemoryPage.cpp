#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/ApplicationList.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/FlowGrid.h"
#include "desktop/widgets/Legend.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/StackedBar.h"
#include "desktop/widgets/TimeChart.h"
#include "ui/modules/Format.h"
#include "ui/modules/MemoryParts.h"
#include "ui/settings/Prefs.h"

#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace quarn::desktop {

namespace {

/// Shades of the parts in use, then of those that are given away when asked for.
constexpr std::array usedShades{1.0, 0.78, 0.6, 0.48};
constexpr double cacheShade = 0.26;

QString share(uint64_t part, uint64_t whole) {
    return toQt(
        format::percent(static_cast<double>(part) * 100 / static_cast<double>(std::max<uint64_t>(whole, 1))));
}

class MemoryPage final : public Page {
public:
    explicit MemoryPage(PageContext& context);
    void refresh(const Snapshot& snapshot, const Known& known) override;
    bool needsApplications() const override { return true; }
    void showApplications(const ResourceAppList& list, const Snapshot& snapshot, const Known& known) override;

private:
    static constexpr int cardWidth = 320;
    static constexpr int chartHeight = 200;

    void showParts(const Snapshot& snapshot, const Known& known);
    void showPressure(const Snapshot& snapshot, const Known& known);
    void showRates(const Snapshot& snapshot, const Known& known);

    RangePicker* range_;
    Card* parts_;
    StackedBar* bar_;
    Legend* legend_;
    TimeChart* chart_;
    FactTable* pressure_;
    FactTable* rates_;
    ApplicationList* largest_;
};

MemoryPage::MemoryPage(PageContext& context)
    : Page(context, say("Memory")),
      range_(new RangePicker(context.prefs)),
      parts_(new Card(say("What it is used for"))),
      bar_(new StackedBar(WidgetKind::memory)),
      legend_(new Legend),
      chart_(new TimeChart(context.history, {{LiveSeries::memoryUsed, say("Used"), WidgetKind::memory}},
                           {.full = 100, .text = [](double value) { return toQt(format::percent(value)); }})),
      pressure_(new FactTable),
      rates_(new FactTable),
      largest_(new ApplicationList(AppField::memory)) {
    addTool(range_);
    bar_->setAccessibleName(say("What memory is used for"));
    parts_->content().addWidget(bar_);
    parts_->content().addWidget(legend_);
    content().addWidget(parts_);
    auto* chart = new Card(say("Used"));
    chart_->setFixedHeight(chartHeight);
    chart->content().addWidget(chart_);
    content().addWidget(chart);

    auto* cards = new FlowGrid(cardWidth);
    auto* largest = new Card(say("Largest applications"));
    largest->content().addWidget(largest_);
    largest->content().addStretch();
    auto* figures = new Card(say("Pressure, swap and paging"));
    figures->content().addWidget(pressure_);
    figures->content().addWidget(rates_);
    figures->content().addStretch();
    cards->add(largest);
    cards->add(figures);
    content().addWidget(cards);
    content().addStretch();
    connect(largest_, &ApplicationList::opened, this,
            [this](const QString& name) { context_.navigator.open("applications", name); });
}

void MemoryPage::refresh(const Snapshot& snapshot, const Known& known) {
    const SCMem& mem = snapshot.mem;
    if (!known.memory)
        setSentence(say("How much memory there is could not be read"));
    else if (!known.memoryParts)
        setSentence(toQt(fmt::format("{} built in", format::memory(mem.total))));
    else
        setSentence(toQt(fmt::format("{} of {} used; {}", format::memory(mem.used), format::memory(mem.total),
                                     mem.pressureLevel >= 2 ? "memory is short" : "there is enough")));
    showParts(snapshot, known);
    chart_->refresh(range_->follow());
    showPressure(snapshot, known);
    showRates(snapshot, known);
}

void MemoryPage::showApplications(const ResourceAppList& list, const Snapshot& snapshot, const Known& known) {
    largest_->refresh(list, known, appStyle(context_.prefs, snapshot.cpu.perCore.size()));
}

void MemoryPage::showParts(const Snapshot& snapshot, const Known& known) {
    const SCMem& mem = snapshot.mem;
    if (parts_->isHidden() == known.memoryParts) parts_->setVisible(known.memoryParts);
    if (!known.memoryParts) return;
    std::vector<StackedBar::Part> bar;
    std::vector<Legend::Entry> legend;
    QStringList spoken;
    size_t used = 0;
    for (const auto& part : memoryParts(mem)) {
        const double strength = !part.available       ? usedShades[used++ % usedShades.size()]
                                : part.name == "Free" ? 0
                                                      : cacheShade;
        const QString name = toQt(part.name), bytes = toQt(format::memory(part.bytes));
        bar.push_back(
            {static_cast<double>(part.bytes) / static_cast<double>(mem.total), strength,
             name + ": " + bytes + ", " + share(part.bytes, mem.total) + ". " + toQt(part.meaning)});
        legend.push_back({WidgetKind::memory, strength, name, bytes});
        spoken.append(name + ' ' + bytes);
    }
    bar_->show(bar, spoken.join(", "));
    legend_->show(legend);
    parts_->setNote(toQt(format::memory(mem.total)));
}

void MemoryPage::showPressure(const Snapshot& snapshot, const Known& known) {
    const SCMem& mem = snapshot.mem;
    const QString dash = "—", why = say("The system does not tell");
    const auto ifKnown = [&](const QString& text) { return known.memory ? text : dash; };
    const bool swap = known.memory && mem.swapTotal > 0;
    const QString noSwap = known.memory ? say("This system has no swap") : why;
    const QString used = toQt(format::memory(mem.swapUsed)), inAll = toQt(format::memory(mem.swapTotal));
    pressure_->show({
        {say("State"), ifKnown(toQt(pressureText(mem.pressureLevel))),
         known.memory ? say("From how long programs wait for memory, and from what is left") : why},
        {say("Available"), ifKnown(say("%1 %").arg(mem.freePercent)),
         known.memory ? say("What programs can be given without swapping") : why},
        {say("Swap used"), swap ? used : dash, swap ? say("%1 of %2").arg(used, inAll) : noSwap},
        {say("Swap in all"), swap ? inAll : dash, swap ? QString() : noSwap},
        {say("Compressed"), known.memoryParts ? toQt(format::memory(mem.compressed)) : dash,
         say("Room that compressed memory takes (zswap, zram)")},
    });
}

void MemoryPage::showRates(const Snapshot& snapshot, const Known& known) {
    const auto& rates = snapshot.rates;
    const bool isKnown = known.rates && known.memoryParts;
    const auto page = static_cast<double>(snapshot.mem.pageSize);
    const auto fact = [&](const char* label, const std::string& value, const char* meaning) {
        return FactTable::Fact{say(label), isKnown ? toQt(value) : QString("—"),
                               isKnown                   ? say(meaning)
                               : snapshot.generation < 2 ? say("Known with the next sample")
                                                         : say("Could not be read")};
    };
    rates_->show({
        fact("Read from disk", format::rate(rates.pageIn * page), "Pages brought in (page-in)"),
        fact("Written to disk", format::rate(rates.pageOut * page), "Pages written out (page-out)"),
        fact("Swapped in", format::rate(rates.swapIn * page), "Memory brought back from swap"),
        fact("Swapped out", format::rate(rates.swapOut * page), "Memory moved to swap"),
        fact("Page faults", format::perSecond(rates.faults), "How often a page had to be provided"),
        fact("Compression", format::rate(rates.compressions * page),
             "Memory that was compressed (zswap, zram)"),
        fact("Decompression", format::rate(rates.decompressions * page),
             "Compressed memory that was needed again"),
    });
}

} // namespace

Page* makeMemoryPage(PageContext& context) { return new MemoryPage(context); }

} // namespace quarn::desktop
