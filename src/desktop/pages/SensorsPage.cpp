// Every sensor by part of the machine, with its limits.
#include "desktop/Text.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/Card.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/SensorModel.h"
#include "desktop/widgets/TableView.h"
#include "desktop/widgets/TimeChart.h"
#include "monitor/Monitor.h"
#include "ui/modules/PageSentences.h"
#include "ui/modules/WidgetKind.h"

#include <QVBoxLayout>

namespace quarn::desktop {
namespace {

constexpr double patience = 10; ///< seconds that sensors may take for their first answer

class SensorsPage final : public Page {
public:
    explicit SensorsPage(PageContext& context)
        : Page(context, say("Sensors")),
          range_(new RangePicker(context.prefs)),
          card_(new Card(say("Temperature"))),
          chart_(new TimeChart(context.history,
                               {{LiveSeries::temperature, say("Temperature"), WidgetKind::temperature}},
                               scale({}))),
          view_(new TableView("sensors", TableView::Shape::tree)) {
        contentFills();
        addTool(range_);
        card_->content().addWidget(chart_);
        chart_->setFixedHeight(chartHeight);
        view_->setAccessibleName(say("Sensors"));
        view_->show(model_, 0, Qt::AscendingOrder);
        view_->setItemsExpandable(true);
        connect(&model_, &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex& parent) {
            if (parent.isValid()) view_->expand(parent);
        });
        content().addWidget(card_);
        content().addWidget(view_, 1);
    }

    void refresh(const Snapshot& snapshot, const Known&) override {
        const ReadingStyle style = readingStyle(context_.prefs);
        if (style != style_) chart_->setScale(scale(style));
        style_ = style;
        chart_->refresh(range_->follow());
        const Reading reading{snapshot, {}, style, representativeTemperature(snapshot)};
        card_->setVisible(reading.temperature.has_value());
        card_->setNote(toQt(reading.caption(WidgetKind::temperature)));
        showSensors(snapshot);
    }

private:
    static constexpr int chartHeight = 160;

    static TimeChart::Scale scale(const ReadingStyle& style) {
        return {.text = [style](double celsius) { return toQt(temperatureText(celsius, style)); }};
    }

    void showSensors(const Snapshot& snapshot) {
        SensorReadings readings;
        for (const auto* list : {&snapshot.temps, &snapshot.fanKeys, &snapshot.voltageKeys,
                                 &snapshot.currentKeys, &snapshot.powerKeys})
            for (const Sensor& sensor : *list) readings[sensor.name] = sensor.value;
        const auto described = context_.monitor.sensors();
        model_.setSections(
            sensorSections({described.data(), described.size()}, readings,
                           snapshot.isAppleSilicon ? SensorNaming::appleSilicon : SensorNaming::intel),
            style_);
        if (model_.rowCount() > 0) {
            setSentence(toQt(sensorSentence(snapshot, style_)));
            return;
        }
        if (!waitingSince_) waitingSince_ = steadySeconds();
        const bool mayCome = steadySeconds() - *waitingSince_ < patience;
        const QString why = mayCome ? say("Sensors are being read.")
                                    : say("This machine offers no sensors; virtual machines usually do not.");
        setSentence(why);
        view_->setEmptyText(why);
    }

    SensorModel model_;
    RangePicker* range_;
    Card* card_;
    TimeChart* chart_;
    TableView* view_;
    ReadingStyle style_;
    std::optional<double> waitingSince_;
};

} // namespace

Page* makeSensorsPage(PageContext& context) { return new SensorsPage(context); }

} // namespace quarn::desktop
