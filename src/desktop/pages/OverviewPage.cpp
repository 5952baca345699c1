#include "HelperKit/SerialQueue.h"
#include "desktop/Background.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/ApplicationList.h"
#include "desktop/widgets/AttentionList.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/FlowGrid.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/SegmentedChoice.h"
#include "desktop/widgets/Tile.h"
#include "desktop/widgets/TimeChart.h"
#include "history/LiveRecord.h"
#include "monitor/AppWatch.h"
#include "monitor/Monitor.h"
#include "ui/modules/Format.h"
#include "ui/modules/StateSentence.h"
#include "ui/settings/Prefs.h"

#include <QVBoxLayout>
#include <array>
#include <optional>

namespace quarn::desktop {

namespace {

/// The page that shows more of a kind.
const char* pageOf(WidgetKind kind) {
    switch (kind) {
    case WidgetKind::temperature: return "sensors";
    case WidgetKind::disk: return "disks";
    default: return widgetKindId(kind).data();
    }
}

class OverviewPage final : public Page {
public:
    explicit OverviewPage(PageContext& context);
    void refresh(const Snapshot& snapshot, const Known& known) override;
    bool needsApplications() const override { return true; }
    void showApplications(const ResourceAppList& list, const Snapshot& snapshot, const Known& known) override;

private:
    static constexpr int tileWidth = 150;
    static constexpr int cardWidth = 320;
    static constexpr int chartHeight = 150; // so that all cards show in a window of the usual size
    static constexpr double tileSpan = 60;  ///< seconds
    static constexpr size_t tileColumns = 30;
    static constexpr double volumesEvery = 30; ///< seconds

    void showTiles(const Snapshot& snapshot, const Known& known);
    void showAttention(const Snapshot& snapshot, const Known& known);
    void readVolumes(double now);
    void showBusiest();

    RangePicker* range_;
    std::array<Tile*, allWidgetKinds.size()> tiles_{};
    TimeChart* chart_;
    ApplicationList* busiest_;
    SegmentedChoice* busiestSpan_; ///< now or the last half hour
    AttentionList* attention_;
    Known known_; ///< this and the next: as the applications are shown
    AppStyle style_;
    Attention watch_;
    std::vector<Volume> volumes_;
    std::optional<double> volumesRead_;               ///< when they were asked for last, steady seconds
    SerialQueue queue_{"com.kelmora.quarn.overview"}; ///< last: what runs on it ends first
};

OverviewPage::OverviewPage(PageContext& context)
    : Page(context, say("Overview")),
      range_(new RangePicker(context.prefs)),
      chart_(new TimeChart(context.history,
                           {{LiveSeries::cpuTotal, say("CPU"), WidgetKind::cpu},
                            {LiveSeries::cpuSystem, say("System share"), WidgetKind::cpu, true}},
                           {.full = 100, .text = [](double value) { return toQt(format::percent(value)); }})),
      busiest_(new ApplicationList(AppField::cpu)),
      busiestSpan_(new SegmentedChoice({say("Now"), say("Half hour")}, say("How far back"))),
      attention_(new AttentionList) {
    addTool(range_);
    auto* tiles = new FlowGrid(tileWidth, FlowGrid::Lead::wide);
    for (const WidgetKind kind : allWidgetKinds) {
        auto* tile = tiles_[static_cast<size_t>(kind)] = new Tile(kind);
        connect(tile, &Tile::opened, this, [this, kind] { context_.navigator.open(pageOf(kind)); });
        tiles->add(tile);
    }
    content().addWidget(tiles);

    auto* cards = new FlowGrid(cardWidth);
    auto* busiest = new Card(say("Busiest applications"));
    busiest->addCorner(busiestSpan_);
    busiestSpan_->setCurrent(0);
    busiest->content().addWidget(busiest_);
    busiest->content().addStretch();
    auto* attention = new Card(say("Needs attention"));
    attention->content().addWidget(attention_);
    attention->content().addStretch();
    cards->add(busiest);
    cards->add(attention);
    content().addWidget(cards);

    auto* chart = new Card(say("CPU"));
    chart->content().addWidget(chart_);
    chart_->setFixedHeight(chartHeight);
    content().addWidget(chart);
    content().addStretch();

    connect(busiest_, &ApplicationList::opened, this,
            [this](const QString& name) { context_.navigator.open("applications", name); });
    connect(busiestSpan_, &SegmentedChoice::chosen, this, [this] { showBusiest(); });
    connect(attention_, &AttentionList::opened, this,
            [this](const QString& page, const QString& search) { context_.navigator.open(page, search); });
}

void OverviewPage::refresh(const Snapshot& snapshot, const Known& known) {
    const std::string sentence = stateSentence(snapshot, known, context_.apps.latest().get());
    setSentence(!sentence.empty()         ? toQt(sentence)
                : snapshot.generation < 2 ? say("How busy the machine is will be known with the next sample")
                                          : say("How busy the machine is could not be read"));
    showTiles(snapshot, known);
    chart_->refresh(range_->follow());
    showAttention(snapshot, known);
}

void OverviewPage::showApplications(const ResourceAppList&, const Snapshot& snapshot, const Known& known) {
    known_ = known;
    style_ = appStyle(context_.prefs, snapshot.cpu.perCore.size());
    showBusiest();
}

void OverviewPage::showBusiest() {
    if (busiestSpan_->current() == 1)
        busiest_->refresh(context_.live.topApps(AppHistoryMetric::cpu, ApplicationList::rowCount));
    else if (const auto list = context_.apps.latest())
        busiest_->refresh(*list, known_, style_);
}

void OverviewPage::showTiles(const Snapshot& snapshot, const Known& known) {
    const Reading reading{snapshot, known, readingStyle(context_.prefs), representativeTemperature(snapshot)};
    for (const WidgetKind kind : allWidgetKinds) {
        Tile& tile = *tiles_[static_cast<size_t>(kind)];
        tile.setCrossfades(context_.prefs.crossfadeValues.get());
        tile.show(toQt(reading.headline(kind)), toQt(reading.caption(kind)),
                  context_.history.peaks(seriesOf(kind), tileSpan, tileColumns));
    }
}

void OverviewPage::showAttention(const Snapshot& snapshot, const Known& known) {
    const double now = steadySeconds();
    readVolumes(now);
    const auto limits = attentionLimits(context_.prefs);
    const auto style = readingStyle(context_.prefs);
    attention_->show(watch_.look(snapshot, known, volumes_, limits, style, now),
                     toQt(watchedText(snapshot, limits, style)));
}

void OverviewPage::readVolumes(double now) {
    if (volumesRead_ && now - *volumesRead_ < volumesEvery) return;
    volumesRead_ = now;
    inBackground(
        queue_, this, [&monitor = context_.monitor] { return monitor.volumes(); },
        [this](std::vector<Volume> volumes) { volumes_ = std::move(volumes); });
}

} // namespace

Page* makeOverviewPage(PageContext& context) { return new OverviewPage(context); }

} // namespace quarn::desktop
