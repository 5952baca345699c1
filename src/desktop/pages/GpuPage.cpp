#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/FlowGrid.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/TimeChart.h"
#include "monitor/Monitor.h"
#include "ui/modules/Format.h"
#include "ui/modules/HardwareText.h"

#include <QLabel>
#include <QVBoxLayout>
#include <cmath>

namespace quarn::desktop {

namespace {

class GpuPage final : public Page {
public:
    explicit GpuPage(PageContext& context);
    void refresh(const Snapshot& snapshot, const Known& known) override;

private:
    static constexpr int factsWidth = 280;
    static constexpr int chartHeight = 260;

    void showEmpty(bool hasReading);
    void showUse(const Snapshot& snapshot);
    void showMemory(const Snapshot& snapshot);

    RangePicker* range_;
    Card* chartCard_;
    TimeChart* chart_;
    Card* emptyCard_;
    QLabel* empty_;
    FlowGrid* facts_;
    FactTable* use_;
    FactTable* memory_;
};

GpuPage::GpuPage(PageContext& context)
    : Page(context, say("GPU")),
      range_(new RangePicker(context.prefs)),
      chartCard_(new Card(say("Use"))),
      chart_(new TimeChart(context.history, {{LiveSeries::gpu, say("Busy"), WidgetKind::gpu}},
                           {.full = 100, .text = [](double value) { return toQt(format::percent(value)); }})),
      emptyCard_(new Card),
      empty_(new QLabel),
      facts_(new FlowGrid(factsWidth)),
      use_(new FactTable),
      memory_(new FactTable) {
    addTool(range_);
    empty_->setTextFormat(Qt::PlainText);
    empty_->setWordWrap(true);
    empty_->setProperty("dim", true);
    emptyCard_->content().addWidget(empty_);
    emptyCard_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    content().addWidget(emptyCard_);
    chartCard_->content().addWidget(chart_);
    chart_->setFixedHeight(chartHeight);
    content().addWidget(chartCard_);
    const auto add = [&](const QString& title, FactTable* table) {
        auto* card = new Card(title);
        card->content().addWidget(table);
        card->content().addStretch();
        facts_->add(card);
    };
    add(say("Engines"), use_);
    add(say("Memory and power"), memory_);
    content().addWidget(facts_);
    content().addStretch();
}

void GpuPage::refresh(const Snapshot& snapshot, const Known&) {
    const SCGpuStats& gpu = snapshot.gpu;
    const Hardware& hardware = context_.monitor.hardware();
    const QString name = hardware.gpuName.empty() ? say("The GPU") : toQt(hardware.gpuName);
    const bool hasReading = gpu.device >= 0;
    const bool isThere = hasReading || gpu.memAlloc > 0 || !hardware.gpuName.empty();
    setSentence(hasReading ? say("%1 is %2 % busy").arg(name).arg(std::lround(gpu.device))
                : isThere  ? say("%1 does not tell how busy it is").arg(name)
                           : say("No GPU was found"));
    showEmpty(hasReading);
    if (facts_->isHidden() == isThere) facts_->setVisible(isThere);
    if (hasReading) chart_->refresh(range_->follow());
    if (!isThere) return;
    showUse(snapshot);
    showMemory(snapshot);
}

/// Says in place of the graph why there is none.
void GpuPage::showEmpty(bool hasReading) {
    if (chartCard_->isHidden() == hasReading) chartCard_->setVisible(hasReading);
    if (emptyCard_->isHidden() != hasReading) emptyCard_->setVisible(!hasReading);
    if (hasReading) return;
    const QString why =
        context_.monitor.hardware().gpuName.empty()
            ? say("This machine has no GPU that the system knows of. In a virtual machine that is usual; "
                  "elsewhere its driver may be missing.")
            : say("The GPU is asleep, and Quarn does not wake it, or its driver reports no use. With some "
                  "drivers, the use by other people's programs can be seen with the helper only.");
    if (empty_->text() != why) empty_->setText(why);
}

void GpuPage::showUse(const Snapshot& snapshot) {
    const SCGpuStats& gpu = snapshot.gpu;
    const auto engine = [](const char* label, double percent, const char* meaning) {
        return FactTable::Fact{say(label), percent >= 0 ? toQt(format::percent(percent)) : QString("—"),
                               percent >= 0 ? say(meaning) : say("The driver does not tell")};
    };
    const double megahertz = snapshot.freq ? snapshot.freq->gpuFreqMHz : 0;
    use_->show({
        engine("Busy", gpu.device, "The busiest part of the busiest GPU"),
        engine("Drawing", gpu.renderer, "The engine that draws (renderer)"),
        engine("Geometry", gpu.tiler, "The engine that sorts geometry (tiler)"),
        {say("Frequency"),
         megahertz > 0 ? toQt(clockText(static_cast<uint64_t>(megahertz * 1e6))) : QString("—"),
         megahertz > 0 ? QString() : say("Needs the helper")},
    });
}

void GpuPage::showMemory(const Snapshot& snapshot) {
    const SCGpuStats& gpu = snapshot.gpu;
    const Hardware& hardware = context_.monitor.hardware();
    const auto bytes = [](uint64_t count) { return count > 0 ? toQt(format::memory(count)) : QString("—"); };
    const QString silent = say("The driver does not tell");
    const double watts = snapshot.power.gpuWatts;
    memory_->show({
        {say("Memory used"), bytes(gpu.memUsed), gpu.memUsed > 0 ? QString() : silent},
        {say("Memory in all"), bytes(gpu.memAlloc),
         gpu.memAlloc > 0 ? say("Its own memory, or what programs were given of the system's") : silent},
        {say("Power"), watts > 0 ? toQt(format::watts(watts)) : QString("—"),
         watts > 0 ? QString() : say("The driver does not tell, or it needs the helper")},
        {say("Compute units"), hardware.gpuCores > 0 ? QString::number(hardware.gpuCores) : QString("—"),
         hardware.gpuCores > 0 ? QString() : silent},
    });
}

} // namespace

Page* makeGpuPage(PageContext& context) { return new GpuPage(context); }

} // namespace quarn::desktop
