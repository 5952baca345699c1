#include "desktop/history/AppRanking.h"

#include "desktop/Icon.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/UiState.h"
#include "desktop/widgets/ElidedLabel.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/HistoryChart.h"
#include "desktop/widgets/RankList.h"
#include "desktop/widgets/SegmentedChoice.h"
#include "ui/modules/Format.h"
#include "ui/modules/HistorySeries.h"
#include "ui/modules/HistoryText.h"

#include <QLabel>
#include <QResizeEvent>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr int roomForTwo = 760; ///< pixels from which the chosen application stands beside the list
constexpr int leastAmount = 128, changeWidth = 76, chartHeight = 150;
const QString metricKey = "history/metric";

QStringList metricTitles() {
    QStringList titles;
    for (const auto& each : appMetrics) titles.append(say(each.title));
    return titles;
}

const char* labelOf(AppLine line) {
    switch (line) {
    case AppLine::cpu: return "CPU";
    case AppLine::memory: return "Average";
    case AppLine::memoryPeak: return "Peak";
    case AppLine::diskRead: return "Read";
    case AppLine::diskWritten: return "Written";
    case AppLine::received: return "Received";
    case AppLine::sent: return "Sent";
    case AppLine::energy: return "Energy score";
    }
    return "";
}

Chart::Scale scaleOf(AppHistoryMetric metric, const AppStyle& style) {
    constexpr double gibi = 1ull << 30;
    const double share = style.wholeMachine > 0 ? static_cast<double>(style.wholeMachine) : 1;
    switch (metric) {
    case AppHistoryMetric::cpu:
        return {.text = [share](double value) { return toQt(format::percent(value / share)); },
                .perUnit = 1 / share};
    case AppHistoryMetric::memory:
        return {.text = [](double bytes) { return toQt(format::memory(static_cast<uint64_t>(bytes))); },
                .perUnit = 1 / gibi};
    case AppHistoryMetric::energy: return {.text = [](double score) { return toQt(format::count(score)); }};
    default:
        return {.text = [](double bytes) { return toQt(format::diskSize(static_cast<uint64_t>(bytes))); }};
    }
}

HistoryChart* chartOf(AppHistoryMetric metric) {
    std::vector<Chart::Line> lines;
    for (const AppLine line : appLines(metric)) {
        const bool isPeak = line == AppLine::memoryPeak;
        lines.push_back({say(labelOf(line)), traits(metric).kind, !lines.empty(),
                         isPeak ? Chart::Line::Fill::none : Chart::Line::Fill::below});
    }
    auto* chart = new HistoryChart(std::move(lines), {});
    chart->setFixedHeight(chartHeight);
    return chart;
}

} // namespace

AppRanking::AppRanking(QWidget* parent)
    : Card(say("Applications"), parent),
      metric_(new SegmentedChoice(metricTitles(), say("What applications are ranked by"))),
      details_(new QWidget),
      list_(new RankList(say("Name"), {})),
      others_(new QLabel),
      name_(new QLabel),
      amount_(new ElidedLabel),
      halves_(new QBoxLayout(QBoxLayout::TopToBottom)),
      charts_(new QVBoxLayout),
      facts_(new FactTable) {
    addCorner(metric_);
    int stored = 0;
    for (size_t i = 0; i < appMetrics.size(); ++i)
        if (UiState::text(metricKey) == toQt(appMetrics[i].id)) stored = static_cast<int>(i);
    metric_->setCurrent(stored);
    connect(metric_, &SegmentedChoice::chosen, this, [this](int index) {
        UiState::setText(metricKey, toQt(appMetrics[static_cast<size_t>(index)].id));
        if (choice_ == Choice::first) app_.clear();
        Q_EMIT changed();
    });
    connect(list_, &RankList::opened, this, [this](const QString& key) {
        if (key.toStdString() == app_) return close();
        choose(key.toStdString());
        Q_EMIT changed();
    });
    others_->setFont(Theme::captionFont());
    others_->setProperty("dim", true);
    auto* left = new QVBoxLayout;
    left->setSpacing(4);
    left->addWidget(list_);
    left->addWidget(others_);
    left->addStretch(1);
    makeDetails();
    halves_->setSpacing(2 * Theme::gap);
    halves_->addLayout(left, 1);
    halves_->addWidget(details_, 1);
    content().addLayout(halves_);
}

void AppRanking::makeDetails() {
    auto* column = new QVBoxLayout(details_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Theme::gap);
    name_->setFont(Theme::cardTitleFont());
    name_->setTextFormat(Qt::PlainText);
    amount_->setFont(Theme::captionFont());
    amount_->setProperty("dim", true);
    const auto button = [&](const char* iconName, const QString& tip, auto work) {
        auto* made = new QToolButton;
        made->setIcon(icon(iconName));
        made->setAutoRaise(true);
        made->setToolTip(tip);
        made->setAccessibleName(tip);
        connect(made, &QToolButton::clicked, this, work);
        return made;
    };
    auto* heading = new QHBoxLayout;
    heading->addWidget(name_, 1);
    heading->addWidget(button("applications", say("Show it among the applications that run now"),
                              [this] { Q_EMIT processesWanted(name_->text()); }));
    heading->addWidget(button("close", say("Close the past of this application"), [this] { close(); }));
    column->addLayout(heading);
    column->addWidget(amount_);
    column->addLayout(charts_);
    column->addWidget(facts_);
    column->addStretch(1);
    details_->hide();
}

AppHistoryMetric AppRanking::metric() const {
    return static_cast<AppHistoryMetric>(std::max(metric_->current(), 0));
}

void AppRanking::close() {
    choose({});
    Q_EMIT changed();
}

void AppRanking::choose(const std::string& app) {
    app_ = app;
    choice_ = Choice::own;
    list_->setCurrent(toQt(app));
    if (app.empty()) details_->hide();
}

void AppRanking::show(const HistoryAnswer& answer, const AppStyle& style) {
    showRanking(answer);
    showDetails(answer, style);
    first_ = answer.apps.empty() ? std::string() : answer.apps.front().total.bundlePath;
    chooseFirst();
}

void AppRanking::chooseFirst() {
    if (!app_.empty() || choice_ == Choice::own || !isWide() || first_.empty()) return;
    app_ = first_;
    list_->setCurrent(toQt(app_));
    Q_EMIT changed();
}

bool AppRanking::isWide() const { return width() >= roomForTwo; }

void AppRanking::showRanking(const HistoryAnswer& answer) {
    const auto& by = traits(answer.question.by);
    const auto rows = appRankRows(answer);
    // Bars are longer where no other half needs the room.
    const int amountWidth = app_.empty() ? std::max(leastAmount, width() / 3) : leastAmount;
    const bool compares =
        std::any_of(rows.begin(), rows.end(), [](const AppRankRow& row) { return !row.comparison.empty(); });
    std::vector<RankList::Column> columns{{say(by.amount), by.kind, amountWidth}};
    if (compares) columns.push_back({say("Change"), by.kind, changeWidth});
    list_->setColumns(std::move(columns));
    list_->setEmptyText(say("Nothing of the kind was recorded of any application."));
    std::vector<RankList::Row> shown;
    for (const auto& row : rows) {
        shown.push_back({toQt(row.name), {}, toQt(row.app), {{toQt(row.amount), row.share}}});
        if (compares) shown.back().cells.push_back({toQt(row.comparison), 0});
    }
    list_->show(shown);
    const QString others = toQt(amountText(answer.otherApps, answer.question.by));
    const bool areSummed = answer.question.by != AppHistoryMetric::memory;
    const size_t more = answer.otherAppCount + answer.apps.size() - rows.size();
    others_->setVisible(more > 0 && !rows.empty());
    others_->setText(areSummed ? say("%1 more, together %2").arg(more).arg(others)
                               : say("%1 more").arg(more));
}

void AppRanking::showDetails(const HistoryAnswer& answer, const AppStyle& style) {
    const AppHistoryMetric by = answer.question.by;
    details_->setVisible(!app_.empty());
    if (app_.empty()) return;
    if (charted_ != by) {
        delete chart_;
        charts_->addWidget(chart_ = chartOf(by));
        charted_ = by;
    }
    const AppTotal unnamed{app_, {}};
    name_->setText(toQt(appName(answer.app ? *answer.app : unnamed)));
    const QString when = toQt(appSpan(answer));
    amount_->show(answer.app ? say("%1 %2").arg(toQt(amountSentence(answer.app->metrics, by)), when)
                             : say("Nothing was recorded of it %1.").arg(when));
    chart_->setVisible(answer.app.has_value());
    facts_->setVisible(answer.app.has_value());
    if (!answer.app) return;
    chart_->setScale(scaleOf(by, style));
    chart_->show(appSeries(answer, appLines(by)), answer.from, answer.to);
    facts_->show(appFacts(answer.app->metrics));
}

void AppRanking::resizeEvent(QResizeEvent* event) {
    Card::resizeEvent(event);
    halves_->setDirection(isWide() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    chooseFirst();
}

} // namespace quarn::desktop
