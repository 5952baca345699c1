// What the machine and its applications did in the last hour to two years.
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/UiState.h"
#include "desktop/history/AppRanking.h"
#include "desktop/history/HistoryAsker.h"
#include "desktop/history/HistoryCard.h"
#include "desktop/history/HistoryKeeping.h"
#include "desktop/history/LiveExport.h"
#include "desktop/pages/Pages.h"
#include "desktop/widgets/FlowGrid.h"
#include "desktop/widgets/Notice.h"
#include "desktop/widgets/SegmentedChoice.h"
#include "monitor/Monitor.h"
#include "ui/settings/Prefs.h"

#include <QLabel>
#include <QVBoxLayout>
#include <array>

namespace quarn::desktop {

namespace {

constexpr int wideChart = 170, smallChart = 120, smallCard = 300;
constexpr size_t rankedApps = 10;
const QString spanKey = "history/span";

QStringList spanTitles() {
    QStringList titles;
    for (const auto& each : historySpans) titles.append(say(each.title));
    return titles;
}

class HistoryPage final : public Page {
public:
    explicit HistoryPage(PageContext& context);
    void refresh(const Snapshot& snapshot, const Known& known) override;
    /// Chooses the application with this key.
    void search(const QString& text) override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void chooseSpan(HistorySpan span);
    void followSpanSetting();
    HistorySpan span() const { return static_cast<HistorySpan>(std::max(spans_->current(), 0)); }
    void ask();
    void show(const HistoryAsker::Answer& answer);
    void showValues(const HistoryAnswer& answer);
    QString whatToDo(HistoryAsker::Answer::State state) const;
    void showNothing(const QString& why, const QString& hint);

    HistoryAsker asker_;
    SegmentedChoice* spans_;
    Notice* notice_;
    Card* nothing_; ///< in the place of the charts, when there is nothing to show
    QLabel* hint_;
    QWidget* past_;
    HistoryCard* cpu_;
    std::array<HistoryCard*, 4> others_;
    AppRanking* apps_;
    HistoryKeeping* keeping_;
    LiveExport* live_;
    HistoryStatus status_;
    TopAppsRange range_; ///< the setting, as it was seen last
    uint64_t memory_ = 0;
    size_t cores_ = 0;
};

HistoryPage::HistoryPage(PageContext& context)
    : Page(context, say("History")),
      asker_(
          context.metrics, [this](const HistoryAsker::Answer& answer) { show(answer); }, this),
      spans_(new SegmentedChoice(spanTitles(), say("How far back"))),
      notice_(new Notice),
      nothing_(new Card),
      hint_(new QLabel),
      past_(new QWidget),
      cpu_(new HistoryCard(WidgetKind::cpu, wideChart)),
      others_{new HistoryCard(WidgetKind::memory, smallChart), new HistoryCard(WidgetKind::disk, smallChart),
              new HistoryCard(WidgetKind::network, smallChart),
              new HistoryCard(WidgetKind::power, smallChart)},
      apps_(new AppRanking),
      keeping_(new HistoryKeeping(context)),
      live_(new LiveExport(context.live)),
      range_(context.prefs.topAppsRange.get()) {
    hint_->setWordWrap(true);
    hint_->setTextFormat(Qt::PlainText);
    nothing_->content().addWidget(hint_);
    auto* column = new QVBoxLayout(past_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Theme::gap);
    auto* grid = new FlowGrid(smallCard);
    for (auto* card : others_) grid->add(card);
    column->addWidget(cpu_);
    column->addWidget(apps_);
    column->addWidget(grid);
    auto* choices = new QHBoxLayout;
    choices->addWidget(spans_);
    choices->addStretch(1);
    content().addLayout(choices);
    content().addWidget(notice_);
    content().addWidget(nothing_);
    content().addWidget(past_);
    auto* files = new FlowGrid(smallCard);
    files->add(keeping_);
    files->add(live_);
    content().addWidget(files);
    content().addStretch(1);
    showNothing(say("Reading the history …"), {});

    followSpanSetting();
    connect(spans_, &SegmentedChoice::chosen, this,
            [this](int index) { chooseSpan(static_cast<HistorySpan>(index)); });
    connect(apps_, &AppRanking::changed, this, [this] { ask(); });
    connect(apps_, &AppRanking::processesWanted, this,
            [this](const QString& name) { context_.navigator.open("applications", name); });
    connect(keeping_, &HistoryKeeping::failed, notice_, &Notice::tell);
    connect(keeping_, &HistoryKeeping::cleared, this, [this] { asker_.askAgain(); });
    ask();
}

/// Up to a month the span is a setting. Longer ones are kept beside it, for as long as the setting stays what
/// it was when they were chosen.
void HistoryPage::followSpanSetting() {
    range_ = context_.prefs.topAppsRange.get();
    HistorySpan shown = spanOf(range_);
    const QString longer = UiState::text(spanKey);
    for (const auto each : {HistorySpan::year, HistorySpan::twoYears})
        if (longer == toQt(std::string(traits(each).id) + " " + std::string(traits(shown).id))) {
            spans_->setCurrent(static_cast<int>(each));
            return;
        }
    spans_->setCurrent(static_cast<int>(shown));
}

void HistoryPage::chooseSpan(HistorySpan span) {
    const auto range = rangeOf(span);
    UiState::setText(
        spanKey, range ? QString()
                       : toQt(std::string(traits(span).id) + " " + std::string(traits(spanOf(range_)).id)));
    if (range) {
        range_ = *range;
        try {
            context_.prefs.topAppsRange.set(*range);
        } catch (const SettingsError& error) {
            notice_->tell(toQt(error.what())); // it holds until the program ends
        }
    }
    ask();
}

void HistoryPage::ask() { asker_.want(HistoryQuestion{span(), apps_->metric(), rankedApps, apps_->app()}); }

void HistoryPage::refresh(const Snapshot& snapshot, const Known& known) {
    memory_ = known.memory ? snapshot.mem.total : 0;
    cores_ = snapshot.cpu.perCore.size();
    if (context_.prefs.topAppsRange.get() != range_) {
        followSpanSetting();
        ask();
    }
    const HistoryStatus status = context_.metrics.status();
    keeping_->show(status);
    live_->refresh();
    if (status == status_) return;
    if (status.problem != status_.problem) notice_->tell(toQt(status.problem));
    status_ = status;
    asker_.askAgain();
}

void HistoryPage::search(const QString& text) {
    apps_->choose(text.toStdString());
    ask();
}

void HistoryPage::showEvent(QShowEvent* event) {
    Page::showEvent(event);
    asker_.setShown(true);
}

void HistoryPage::hideEvent(QHideEvent* event) {
    Page::hideEvent(event);
    asker_.setShown(false);
}

void HistoryPage::show(const HistoryAsker::Answer& answer) {
    if (!answer.values) return showNothing(toQt(whyNoHistory(answer.state)), whatToDo(answer.state));
    const QString sentence = toQt(historySentence(*answer.values));
    if (answer.values->total.seconds > 0) {
        setSentence(sentence);
        return showValues(*answer.values);
    }
    const bool isYoung = !(answer.values->before.seconds > 0) && answer.values->apps.empty();
    showNothing(sentence, isYoung ? say("History begins now; come back in an hour.")
                                  : say("Choose a longer span to see what was before."));
}

/// Where the history answers nothing.
QString HistoryPage::whatToDo(HistoryAsker::Answer::State state) const {
    if (state == HistoryAsker::Answer::State::failed) return {}; // the notice says what is wrong
    if (!context_.prefs.saveMetricsHistory.get()) return say("Turn it on below, and come back in an hour.");
    return context_.monitor.root().isHost() ? QString() : say("A captured machine has no history.");
}

/// `hint` says what to do, and may be empty.
void HistoryPage::showNothing(const QString& why, const QString& hint) {
    setSentence(why);
    hint_->setText(hint);
    nothing_->setVisible(!hint.isEmpty());
    past_->hide();
}

void HistoryPage::showValues(const HistoryAnswer& answer) {
    const auto totals = historyTotals(answer);
    const ReadingStyle style = readingStyle(context_.prefs);
    const auto show = [&](HistoryCard* card) {
        const auto total = std::find_if(totals.begin(), totals.end(),
                                        [&](const HistoryTotal& each) { return each.kind == card->kind(); });
        card->setVisible(total != totals.end());
        if (total != totals.end()) card->show(answer, *total, style, memory_);
    };
    show(cpu_);
    for (auto* card : others_) show(card);
    apps_->show(answer, appStyle(context_.prefs, cores_));
    nothing_->hide();
    past_->show();
}

} // namespace

Page* makeHistoryPage(PageContext& context) { return new HistoryPage(context); }

} // namespace quarn::desktop
