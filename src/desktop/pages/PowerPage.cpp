// What the machine draws, by part where that is known, and its battery.
#include "HelperKit/SerialQueue.h"
#include "desktop/Background.h"
#include "desktop/Text.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/FactCard.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/StackedBar.h"
#include "desktop/widgets/TimeChart.h"
#include "monitor/Monitor.h"
#include "ui/modules/Format.h"
#include "ui/modules/PageSentences.h"

#include <QLabel>
#include <QVBoxLayout>

namespace quarn::desktop {
namespace {

class PowerPage final : public Page {
public:
    explicit PowerPage(PageContext& context)
        : Page(context, say("Power and battery")),
          range_(new RangePicker(context.prefs)),
          chartCard_(new Card(say("Whole machine"))),
          chart_(new TimeChart(context.history,
                               {{LiveSeries::power, say("Whole machine"), WidgetKind::power}},
                               {.text = [](double watts) { return toQt(format::watts(watts)); }})),
          power_(new FactCard(say("Power"))),
          parts_(new StackedBar(WidgetKind::power)),
          why_(new QLabel),
          battery_(new FactCard(say("Battery"))),
          charge_(new StackedBar(WidgetKind::power)),
          noBattery_(new QLabel(say("This machine has no battery."))) {
        addTool(range_);
        chartCard_->content().addWidget(chart_);
        chart_->setFixedHeight(chartHeight);
        for (auto* text : {why_, noBattery_}) {
            text->setProperty("dim", true);
            text->setTextFormat(Qt::PlainText);
            text->setWordWrap(true);
        }
        power_->content().insertWidget(0, parts_);
        power_->content().addWidget(why_);
        battery_->content().insertWidget(0, charge_);
        battery_->content().addWidget(noBattery_);
        content().addWidget(chartCard_);
        content().addWidget(power_);
        content().addWidget(battery_);
        content().addStretch(1);
        inBackground(
            queue_, this, [root = context.monitor.root()] { return sysinfo::platform::energyAccess(root); },
            [this](sysinfo::EnergyAccess access) { access_ = access; });
    }

    void refresh(const Snapshot& snapshot, const Known&) override {
        setSentence(toQt(powerSentence(snapshot)));
        const bool drawn = snapshot.power.sysWatts > 0 || hadTotal_;
        hadTotal_ |= snapshot.power.sysWatts > 0;
        chartCard_->setVisible(drawn);
        chart_->refresh(range_->follow());
        const std::string reason = powerReason(access_, snapshot);
        power_->show(powerFacts(snapshot, reason));
        showParts(snapshot.power);
        power_->setNote(snapshot.powerStale ? say("older reading") : QString());
        const QString why = reason.empty() ? QString() : sentenceOf(reason);
        if (why_->text() != why) why_->setText(why);
        why_->setVisible(!why.isEmpty());
        const bool present = snapshot.battery && snapshot.battery->present;
        battery_->show(present ? batteryFacts(*snapshot.battery, readingStyle(context_.prefs))
                               : std::vector<FactGroup>());
        noBattery_->setVisible(!present);
        charge_->setVisible(present && snapshot.battery->percent >= 0);
        if (present) {
            const QString percent = say("%1 %").arg(snapshot.battery->percent);
            charge_->show({{static_cast<double>(snapshot.battery->percent) / 100, 1, percent}}, percent);
        }
    }

private:
    static constexpr int chartHeight = 190;

    /// The known parts of what the whole machine draws; the rest of the bar is everything else.
    void showParts(const SCPower& power) {
        std::vector<StackedBar::Part> parts;
        QStringList spoken;
        const auto add = [&](const char* name, double watts, double strength) {
            if (!(watts > 0) || !(power.sysWatts > 0)) return;
            spoken << say(name) + " " + toQt(format::watts(watts));
            parts.push_back({watts / power.sysWatts, strength, spoken.last()});
        };
        add("Processors", power.cpuWatts, 1);
        add("GPU", power.gpuWatts, 0.7);
        add("Memory", power.dramWatts, 0.45);
        parts_->setVisible(!parts.empty());
        parts_->show(parts, spoken.join(", "));
    }

    /// Why power by part is missing, with what would open it.
    QString sentenceOf(const std::string& reason) const {
        QString text = say("Power by part is not known: ") + toQt(reason) + ".";
        if (access_ == sysinfo::EnergyAccess::denied)
            text += " " + say("Started as root, Quarn can read them.");
        return text;
    }

    RangePicker* range_;
    Card* chartCard_;
    TimeChart* chart_;
    FactCard* power_;
    StackedBar* parts_;
    QLabel* why_;
    FactCard* battery_;
    StackedBar* charge_;
    QLabel* noBattery_;
    bool hadTotal_ = false; ///< a chart that was shown stays
    sysinfo::EnergyAccess access_ = sysinfo::EnergyAccess::open;
    SerialQueue queue_{"power"}; ///< last: what runs on it ends first
};

} // namespace

Page* makePowerPage(PageContext& context) { return new PowerPage(context); }

} // namespace quarn::desktop
