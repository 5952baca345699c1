// The page of the history over databases of every kind.
#include "desktop/WindowFixture.h"
#include "desktop/history/AppRanking.h"
#include "desktop/history/HistoryAsker.h"
#include "desktop/history/HistoryCard.h"
#include "desktop/history/HistoryKeeping.h"
#include "desktop/history/LiveExport.h"
#include "desktop/widgets/HistoryChart.h"
#include "desktop/widgets/Notice.h"
#include "desktop/widgets/RowButton.h"
#include "desktop/widgets/SegmentedChoice.h"
#include "history/MetricsStore.h"
#include "support/ManualQueue.h"
#include "support/TempRoot.h"

#include <QPushButton>

namespace quarn::testing {
namespace {

using namespace desktop;

struct HistoryPage : ::testing::Test {
    void open() {
        fixture_ = std::make_unique<WindowFixture>(LiveHistory(), root_.root(), file());
        fixture_->records().metrics().start(Prefs::shared().saveMetricsHistory.get());
        fixture_->open("history", {1280, 1400});
        fixture_->show(SampleMachine{}.at(30));
    }
    ~HistoryPage() override {
        for (const char* key : {"topAppsRange", "saveMetricsHistory"}) Prefs::shared().find(key)->reset();
    }

    std::filesystem::path file() const { return root_.path() / "metrics.sqlite"; }
    MainWindow& window() { return fixture_->window(); }
    /// Waits until a text is shown; what comes from other threads arrives meanwhile.
    bool says(const QString& text) {
        return QTest::qWaitFor([&] {
            for (auto* label : window().findChildren<QLabel*>())
                if (label->isVisible() && label->text().contains(text)) return true;
            return false;
        });
    }
    void choose(const QString& name, auto value) {
        auto& choice = named<SegmentedChoice>(window(), name);
        choice.setCurrent(static_cast<int>(value));
        Q_EMIT choice.chosen(static_cast<int>(value));
    }
    void awaitState(HistoryStatus::State state) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return fixture_->records().metrics().status().state == state; }));
        fixture_->show(SampleMachine{}.at(31));
    }
    QStringList ranked() {
        QStringList names;
        for (auto* row : window().findChild<AppRanking*>()->findChildren<RowButton*>())
            if (!row->isHidden()) names.append(row->accessibleName().section(',', 0, 0));
        return names;
    }

    TempRoot root_;
    std::unique_ptr<WindowFixture> fixture_;
};

TEST_F(HistoryPage, ShowsWhatWasRecordedAndFollowsTheChoices) {
    writeSampleHistory(file(), std::chrono::system_clock::now());
    open();
    ASSERT_TRUE(says("of the last day"));
    for (auto* card : window().findChildren<HistoryCard*>()) EXPECT_TRUE(card->isVisible());
    EXPECT_EQ(ranked().value(0), "cc1plus");
    ASSERT_TRUE(says("of one core in the last day")) << "the first is chosen by itself";

    choose("How far back", HistorySpan::week);
    EXPECT_EQ(Prefs::shared().topAppsRange.get(), TopAppsRange::week);
    ASSERT_TRUE(says("of one core in the last week"));
    choose("What applications are ranked by", AppHistoryMetric::memory);
    ASSERT_TRUE(says("GiB on average in the last week"));
    EXPECT_EQ(ranked().value(0), "Firefox ESR");
    choose("What applications are ranked by", AppHistoryMetric::cpu);

    choose("How far back", HistorySpan::year);
    EXPECT_EQ(Prefs::shared().topAppsRange.get(), TopAppsRange::week) << "it has no year";
    ASSERT_TRUE(says("of the last year"));
    window().open("history", "kernel");
    EXPECT_TRUE(says("Kernel")) << "an application that other pages ask for";
    open();
    EXPECT_TRUE(says("of the last year")) << "the next time too";
    Prefs::shared().topAppsRange.set(TopAppsRange::hour);
    fixture_->show(SampleMachine{}.at(31));
    EXPECT_TRUE(says("of the last hour")) << "a setting that was changed elsewhere";
}

TEST_F(HistoryPage, SaysWhyThereIsNothing) {
    open();
    EXPECT_TRUE(says("History begins now; come back in an hour"));
    Prefs::shared().saveMetricsHistory.set(false);
    awaitState(HistoryStatus::State::off);
    EXPECT_TRUE(says("Turn it on below"));

    fixture_.reset();
    Prefs::shared().saveMetricsHistory.reset();
    std::filesystem::remove_all(file());
    std::filesystem::create_directory(file());
    open();
    awaitState(HistoryStatus::State::failed);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return window().findChild<Notice*>()->sentence().contains("unable to open"); }));
    EXPECT_TRUE(says("The history cannot be used"));
}

TEST_F(HistoryPage, ClearsOnlyWhenThatIsConfirmed) {
    writeSampleHistory(file(), std::chrono::system_clock::now());
    open();
    ASSERT_TRUE(says("of the last day"));
    QPushButton* clear = nullptr;
    for (auto* button : window().findChild<HistoryKeeping*>()->findChildren<QPushButton*>())
        if (button->text().startsWith("Clear")) clear = button;
    ASSERT_NE(clear, nullptr);
    for (const auto role : {QMessageBox::RejectRole, QMessageBox::AcceptRole}) {
        QTest::mouseClick(clear, Qt::LeftButton);
        auto* question = window().findChild<QMessageBox*>();
        ASSERT_NE(question, nullptr);
        EXPECT_EQ(question->defaultButton(), question->button(QMessageBox::Cancel));
        answer(*question, role);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !window().findChild<QMessageBox*>(); }));
        EXPECT_TRUE(MetricsStore(file(), MetricsStore::Access::reading).newestRecord() ||
                    role == QMessageBox::AcceptRole);
    }
    EXPECT_TRUE(says("History begins now"));
}

TEST_F(HistoryPage, RecordsMeasurementsIntoAFile) {
    open();
    auto& live = fixture_->records().live();
    auto& exporter = *window().findChild<LiveExport*>();
    const auto said = [&](const QString& text) {
        return QTest::qWaitFor([&] {
            exporter.refresh();
            return exporter.state().contains(text);
        });
    };
    const auto recording = root_.path() / "recording.csv";
    exporter.start(recording);
    EXPECT_TRUE(said("Recording into"));
    Snapshot now = SampleMachine{}.at(31);
    now.timestamp = std::chrono::system_clock::now();
    live.add(now, {});
    EXPECT_TRUE(said(": 1 measurements"));
    exporter.stop();
    EXPECT_TRUE(said("Recording finished. File: " + QString::fromStdString(recording.string())));
    EXPECT_TRUE(std::filesystem::exists(recording));
    exporter.save(root_.path() / "export.csv");
    EXPECT_TRUE(said("1 measurements saved"));
    exporter.save(root_.path() / "no folder" / "export.csv");
    EXPECT_TRUE(said("Could not save the file: "));
}

TEST(HistoryAsker, OnlyTheLastQuestionIsAnswered) {
    TempRoot folder;
    ManualQueue queue;
    MetricsRecorder recorder({.queue = queue,
                              .prefs = Prefs::shared(),
                              .file = folder.path() / "metrics.sqlite",
                              .sleepNotices = MetricsRecorderSetup::SleepNotices::none});
    recorder.start(true);
    queue.run();
    std::vector<HistorySpan> answered;
    QObject owner;
    HistoryAsker asker(
        recorder,
        [&](const HistoryAsker::Answer& answer) { answered.push_back(answer.values->question.span); },
        &owner);
    const auto work = [&] {
        for (int i = 0; i < 4; ++i) {
            queue.run();
            QCoreApplication::processEvents();
        }
    };
    asker.want(HistoryQuestion{.span = HistorySpan::hour});
    work();
    EXPECT_TRUE(answered.empty()) << "nobody looks";
    asker.setShown(true);
    asker.want(HistoryQuestion{.span = HistorySpan::day});
    asker.want(HistoryQuestion{.span = HistorySpan::week});
    EXPECT_EQ(queue.pendingCount(), 1u) << "one at a time";
    work();
    EXPECT_EQ(answered, std::vector{HistorySpan::week});
    asker.askAgain();
    asker.setShown(false);
    work();
    EXPECT_EQ(answered.size(), 1u) << "an answer that nobody waits for";
}

TEST(HistoryChart, LeavesAHoleWhereNothingWasRecorded) {
    HistoryChart chart({{"CPU", WidgetKind::cpu}}, {.full = 100, .text = {}});
    chart.resize(300, 200);
    chart.show({{{0, 3600}, {3600, 7200}, {14'400, 18'000}}, {{80, 80, 80}}}, 0, 18'000);
    static_cast<QWidget&>(chart).show();
    const QImage image = chart.grab().toImage();
    const auto isFilled = [&](double share) {
        return image.pixel(static_cast<int>(share * 280), 150) != image.pixel(298, 20);
    };
    EXPECT_TRUE(isFilled(0.1));
    EXPECT_TRUE(isFilled(0.3));
    EXPECT_FALSE(isFilled(0.6));
    EXPECT_TRUE(isFilled(0.9));
}

} // namespace
} // namespace quarn::testing
