#include "desktop/applications/AppDetails.h"

#include "desktop/Background.h"
#include "desktop/Page.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/CloseButton.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/HistoryChart.h"
#include "desktop/widgets/SegmentedChoice.h"
#include "desktop/widgets/WrappedText.h"
#include "history/HistoryTime.h"
#include "history/LiveRecord.h"
#include "history/MetricsColumns.h"
#include "monitor/AppWatch.h"
#include "ui/modules/Format.h"
#include "ui/modules/HistoryText.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

namespace quarn::desktop {

namespace {

constexpr int pastHeight = 130;
constexpr int roomForHalves = 560; ///< pixels from which the past stands beside the present
constexpr HistorySpan keptSpans[]{HistorySpan::day, HistorySpan::week}; ///< after the last half hour

/// A line of the table, from two figures that one field sums up.
struct Half {
    AppField field;
    const char* label;
    double (*number)(const ResourceUsage&);
};
constexpr Half halves[]{
    {AppField::disk, "Disk read", [](const ResourceUsage& usage) { return usage.diskRead; }},
    {AppField::disk, "Disk written", [](const ResourceUsage& usage) { return usage.diskWrite; }},
    {AppField::network, "Received", [](const ResourceUsage& usage) { return usage.network.download; }},
    {AppField::network, "Sent", [](const ResourceUsage& usage) { return usage.network.upload; }},
};

std::vector<FactTable::Fact> factsOf(const AppRow& row, const Known& known, const AppStyle& style) {
    std::vector<FactTable::Fact> facts;
    const auto add = [&](const char* label, AppField field, const char* unit = "") {
        QString value = toQt(shownAppField(row, field, known, style));
        const auto why = whyUnknown(row, field, known);
        if (why.empty()) value += say(unit);
        facts.push_back({say(label), value, say(why)});
    };
    add("CPU", AppField::cpu, style.wholeMachine > 0 ? " % of the machine" : " % of a core");
    add("Memory", AppField::memory);
    for (const Half& half : halves) {
        const auto why = whyUnknown(row, half.field, known);
        const double rate = why.empty() ? half.number(row.usage()) : format::notKnown;
        facts.push_back({say(half.label),
                         toQt(half.field == AppField::network ? networkRateText(rate, style.reading)
                                                              : format::rate(rate)),
                         say(why)});
    }
    add("Power", AppField::energy);
    add("Processes", AppField::processes);
    add("Threads", AppField::threads);
    return facts;
}

QLabel* caption(const QString& text) {
    auto* label = new QLabel(text);
    label->setProperty("dim", true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

AppDetails::AppDetails(PageContext& context, QWidget* parent)
    : Card({}, parent),
      context_(context),
      asker_(
          context.metrics, [this](const HistoryAsker::Answer& answer) { showPast(answer); }, this),
      halves_(new QBoxLayout(QBoxLayout::TopToBottom)),
      facts_(new FactTable),
      span_(new SegmentedChoice({say("Half hour"), say("Day"), say("Week")}, say("How far back"))),
      chart_(new HistoryChart({{say("CPU"), WidgetKind::cpu}}, {})),
      past_(new FactTable),
      noPast_(caption({})),
      bundle_(new WrappedText(say("Described by"))),
      identifier_(new WrappedText(say("Known as"))) {
    auto* close = closeButton(say("Close (Esc)"), say("Close the details"));
    addCorner(close);
    connect(close, &QToolButton::clicked, this, &AppDetails::closed);
    connect(span_, &SegmentedChoice::chosen, this, [this] { want(); });
    span_->setCurrent(0);
    chart_->setFixedHeight(pastHeight);
    noPast_->setWordWrap(true);

    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(makeBody());
    scroll->viewport()->setAutoFillBackground(false);
    scroll->widget()->setAutoFillBackground(false);
    content().addWidget(scroll, 1);
    setMinimumSize(280, 160);
}

QWidget* AppDetails::makeBody() {
    auto* body = new QWidget;
    halves_->setContentsMargins(0, 0, Theme::gap, 0);
    halves_->setSpacing(Theme::gap);
    halves_->addLayout(makePresent(), 1);
    halves_->addLayout(makePast(), 1);
    auto* column = new QVBoxLayout(body);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(halves_);
    column->addStretch(1);
    return body;
}

QLayout* AppDetails::makePresent() {
    auto* column = new QVBoxLayout;
    column->setSpacing(Theme::gap);
    auto* buttons = new QHBoxLayout;
    const auto button = [&](const QString& text, auto signal) {
        auto* made = new QPushButton(text);
        connect(made, &QPushButton::clicked, this, signal);
        buttons->addWidget(made);
    };
    button(say("Show processes"), &AppDetails::processesWanted);
    button(say("Show history"), &AppDetails::historyWanted);
    buttons->addStretch(1);
    column->addLayout(buttons);
    column->addWidget(facts_);
    for (WrappedText* text : {bundle_, identifier_}) {
        auto* label = caption(text->accessibleName());
        label->setBuddy(text);
        auto* block = new QVBoxLayout;
        block->setSpacing(2);
        block->addWidget(label);
        block->addWidget(text);
        column->addLayout(block);
    }
    column->addStretch(1);
    return column;
}

QLayout* AppDetails::makePast() {
    auto* column = new QVBoxLayout;
    column->setSpacing(Theme::gap);
    auto* heading = new QHBoxLayout;
    auto* title = new QLabel(say("CPU in the past"));
    title->setFont(Theme::cardTitleFont());
    heading->addWidget(title, 1);
    heading->addWidget(span_);
    column->addLayout(heading);
    column->addWidget(chart_);
    column->addWidget(past_);
    column->addWidget(noPast_);
    column->addStretch(1);
    return column;
}

void AppDetails::show(const ResourceAppList::App& app, const Known& known, const AppStyle& style) {
    style_ = style;
    setTitle(toQt(app.name));
    setNote(app.processCount == 1 ? say("one process") : say("%1 processes").arg(app.processCount));
    facts_->show(factsOf({&app}, known, style));
    std::string key(historyKey(app));
    if (key != key_) {
        key_ = std::move(key);
        identify(app);
        showNoPast(say("Reading the history …"));
        want();
    } else if (isLive())
        showHalfHour();
}

/// What the system knows of it is in files, which are read off the main thread.
void AppDetails::identify(const ResourceAppList::App& app) {
    bundle_->show(app.bundle ? toQt(*app.bundle) : say("Nothing: these are programs of that name."));
    identifier_->show(toQt(format::unknown));
    if (!app.bundle) return;
    inBackground(
        queue_, this,
        [&index = context_.apps.index(), bundle = *app.bundle] { return index.identity(bundle); },
        [this, key = key_](const sysinfo::AppIdentity& identity) {
            if (key == key_) identifier_->show(orUnknown(identity.bundleID));
        });
}

bool AppDetails::isLive() const { return span_->current() <= 0; }

void AppDetails::want() {
    if (isLive()) {
        asker_.want({});
        return showHalfHour();
    }
    const HistorySpan span = keptSpans[static_cast<size_t>(span_->current() - 1)];
    asker_.want(HistoryQuestion{span, AppHistoryMetric::cpu, 0, key_});
}

void AppDetails::showHalfHour() {
    const auto minutes = context_.live.minutesOf(key_);
    if (minutes.empty()) return showNoPast(say("The next minutes will be shown here."));
    const int64_t now = unixSeconds(std::chrono::system_clock::now());
    AppMetrics total;
    for (const AppMinute& minute : minutes) mergeInto(total, minute.metrics);
    showPast(appSeries(minutes, appLines(AppHistoryMetric::cpu), now), {now - AppLiveHistory::span, now},
             total);
}

void AppDetails::showPast(const HistoryAsker::Answer& answer) {
    const auto& values = answer.values;
    if (!values)
        showNoPast(toQt(whyNoHistory(answer.state)) + ".");
    else if (!values->app)
        showNoPast(say("Nothing was recorded of it in %1.").arg(toQt(lastSpan(values->question.span))));
    else
        showPast(appSeries(*values, appLines(AppHistoryMetric::cpu)), {values->from, values->to},
                 values->app->metrics);
}

void AppDetails::showNoPast(const QString& why) {
    for (QWidget* widget : std::initializer_list<QWidget*>{chart_, past_}) widget->hide();
    noPast_->setText(why);
    noPast_->show();
}

void AppDetails::showPast(const HistorySeries& series, const HistorySeries::Period& period,
                          const AppMetrics& total) {
    for (QWidget* widget : std::initializer_list<QWidget*>{chart_, past_}) widget->show();
    noPast_->hide();
    const double share = style_.wholeMachine > 0 ? static_cast<double>(style_.wholeMachine) : 1;
    chart_->setScale({.text = [share](double value) { return toQt(format::percent(value / share)); },
                      .perUnit = 1 / share});
    chart_->show(series, period.from, period.to);
    past_->show(appFacts(total));
}

void AppDetails::showEvent(QShowEvent* event) {
    Card::showEvent(event);
    asker_.setShown(true);
}

void AppDetails::hideEvent(QHideEvent* event) {
    Card::hideEvent(event);
    asker_.setShown(false);
}

void AppDetails::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        Q_EMIT closed();
    else
        Card::keyPressEvent(event);
}

void AppDetails::resizeEvent(QResizeEvent* event) {
    Card::resizeEvent(event);
    const bool isWide = width() >= roomForHalves;
    halves_->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    halves_->setSpacing(isWide ? 3 * Theme::gap : Theme::gap);
}

} // namespace quarn::desktop
