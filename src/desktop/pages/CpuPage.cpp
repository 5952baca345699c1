#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/CoreBars.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/FlowGrid.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/TimeChart.h"
#include "monitor/AppWatch.h"
#include "monitor/Monitor.h"
#include "ui/modules/Format.h"
#include "ui/modules/HardwareText.h"
#include "ui/modules/StateSentence.h"

#include <QVBoxLayout>
#include <fmt/format.h>

namespace quarn::desktop {

namespace {

/// A fact of the machine that it may keep to itself.
FactTable::Fact machineFact(const char* label, const std::string& value) {
    if (value.empty()) return {say(label), "—", say("The machine does not tell")};
    return {say(label), toQt(value), {}};
}

class CpuPage final : public Page {
public:
    explicit CpuPage(PageContext& context);
    void refresh(const Snapshot& snapshot, const Known& known) override;
    bool needsApplications() const override { return true; }

private:
    static constexpr int factsWidth = 280;
    static constexpr int chartHeight = 260;

    void showCores(const Snapshot& snapshot, const Known& known);
    void showActivity(const Snapshot& snapshot, const Known& known);
    void showLoad(const Snapshot& snapshot, const Known& known);
    void showProcessor();

    RangePicker* range_;
    TimeChart* chart_;
    Card* coresCard_;
    CoreBars* cores_;
    FactTable* load_;
    FactTable* activity_;
    FactTable* processor_;
};

CpuPage::CpuPage(PageContext& context)
    : Page(context, say("CPU")),
      range_(new RangePicker(context.prefs)),
      chart_(new TimeChart(context.history,
                           {{LiveSeries::cpuTotal, say("Total"), WidgetKind::cpu},
                            {LiveSeries::cpuSystem, say("System"), WidgetKind::cpu, true}},
                           {.full = 100, .text = [](double value) { return toQt(format::percent(value)); }})),
      coresCard_(new Card(say("Cores"))),
      cores_(new CoreBars),
      load_(new FactTable),
      activity_(new FactTable),
      processor_(new FactTable) {
    addTool(range_);
    auto* chart = new Card(say("Use"));
    chart->content().addWidget(chart_);
    chart_->setFixedHeight(chartHeight);
    content().addWidget(chart);
    coresCard_->content().addWidget(cores_);
    content().addWidget(coresCard_);

    auto* facts = new FlowGrid(factsWidth);
    const auto add = [&](const QString& title, FactTable* table) {
        auto* card = new Card(title);
        card->content().addWidget(table);
        card->content().addStretch();
        facts->add(card);
    };
    add(say("Load"), load_);
    add(say("Activity"), activity_);
    add(say("Processor"), processor_);
    content().addWidget(facts);
    content().addStretch();
    showProcessor();
}

void CpuPage::refresh(const Snapshot& snapshot, const Known& known) {
    const std::string sentence = stateSentence(snapshot, known, context_.apps.latest().get());
    setSentence(!sentence.empty()         ? toQt(sentence)
                : snapshot.generation < 2 ? say("How busy the cores are will be known with the next sample")
                                          : say("How busy the cores are could not be read"));
    chart_->refresh(range_->follow());
    showCores(snapshot, known);
    showLoad(snapshot, known);
    showActivity(snapshot, known);
}

void CpuPage::showCores(const Snapshot& snapshot, const Known& known) {
    if (coresCard_->isHidden() == known.cpu) coresCard_->setVisible(known.cpu);
    if (known.cpu) cores_->show(snapshot.cpu.perCore, snapshot.cpu.perCoreSystem);
}

void CpuPage::showLoad(const Snapshot& snapshot, const Known&) {
    const auto& load = snapshot.loadAvg;
    const auto cores = static_cast<double>(snapshot.cpu.perCore.size());
    const QString meaning = say("How many threads ran or waited for a core or a disk, on average");
    std::vector<FactTable::Fact> facts;
    const char* const spans[] = {"Last minute", "5 minutes", "15 minutes"};
    for (size_t i = 0; i < 3; ++i) {
        if (i >= load.size()) {
            facts.push_back({say(spans[i]), "—", say("The load average could not be read")});
            continue;
        }
        QString text = toQt(fmt::format("{:.2f}", load[i]));
        if (cores > 0)
            text += say(" (%1 of the cores)").arg(toQt(fmt::format("{:.0f} %", load[i] * 100 / cores)));
        facts.push_back({say(spans[i]), text, meaning});
    }
    const double megahertz = snapshot.freq ? snapshot.freq->pFreqMHz : 0;
    facts.push_back({say("Frequency"),
                     megahertz > 0 ? toQt(clockText(static_cast<uint64_t>(megahertz * 1e6))) : QString("—"),
                     megahertz > 0 ? say("Average of the busy cores") : say("Needs the helper")});
    if (snapshot.freq && snapshot.freq->eFreqMHz > 0)
        facts.push_back({say("Efficiency cores"),
                         toQt(clockText(static_cast<uint64_t>(snapshot.freq->eFreqMHz * 1e6))),
                         {}});
    load_->show(facts);
}

void CpuPage::showActivity(const Snapshot& snapshot, const Known& known) {
    const auto count = [](auto number) { return QLocale::c().toString(static_cast<qlonglong>(number)); };
    const bool listed = !snapshot.processes.empty();
    const QString next =
        snapshot.generation < 2 ? say("Known with the next sample") : say("Could not be read");
    const QString none = listed ? QString() : say("No process could be read");
    activity_->show({
        {say("Programs"), known.cpu ? toQt(format::percent(snapshot.cpu.user)) : QString("—"),
         known.cpu ? say("Time spent in programs (user)") : next},
        {say("System"), known.cpu ? toQt(format::percent(snapshot.cpu.system)) : QString("—"),
         known.cpu ? say("Time spent in the kernel for them (system)") : next},
        {say("Processes"), listed ? count(snapshot.processes.size()) : QString("—"), none},
        {say("Threads"), listed ? count(snapshot.totalThreads) : QString("—"), none},
        {say("Context switches"),
         known.rates ? toQt(format::perSecond(snapshot.rates.contextSwitches)) : QString("—"),
         known.rates ? say("How often a core went on with another thread") : next},
        {say("Running for"), known.uptime ? toQt(format::duration(snapshot.uptime)) : QString("—"),
         say("Since the machine was started")},
    });
}

void CpuPage::showProcessor() {
    const Hardware& hardware = context_.monitor.hardware();
    processor_->show({
        machineFact("Model", hardware.cpuBrand),
        machineFact("Cores", coresText(hardware)),
        machineFact("Architecture", hardware.arch),
        machineFact("Base clock", clockText(hardware.baseClockHz)),
        machineFact("Caches", cachesText(hardware)),
    });
}

} // namespace

Page* makeCpuPage(PageContext& context) { return new CpuPage(context); }

} // namespace quarn::desktop
