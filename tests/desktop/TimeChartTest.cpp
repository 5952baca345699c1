// What a chart of the live history shows, says and does.
#include "desktop/widgets/TimeChart.h"

#include <QAccessible>
#include <QImage>
#include <QTest>
#include <cmath>

namespace quarn::desktop {
namespace {

struct TimeChartTest : ::testing::Test {
    TimeChartTest() {
        chart.resize(300, 200);
        chart.show();
    }

    void sample(double now, double busy) {
        Snapshot snapshot;
        snapshot.cpu.total = busy;
        snapshot.cpu.system = busy / 2;
        history.add(snapshot, {}, now, 1);
    }
    void refresh() { chart.refresh(60); }
    QString spoken() { return QAccessible::queryAccessibleInterface(&chart)->text(QAccessible::Value); }
    /// Whether the fill reaches the bottom of the graph at `share` of its width.
    bool isFilled(double share) {
        const QImage image = chart.grab().toImage();
        const int right = image.width() - QFontMetrics(chart.font()).horizontalAdvance("100 %");
        const QRgb pixel = image.pixel(static_cast<int>(share * right), image.height() - 40);
        return pixel != image.pixel(image.width() - 1, image.height() / 2);
    }

    LiveHistory history;
    TimeChart chart{history,
                    {{LiveSeries::cpuTotal, "Total", WidgetKind::cpu},
                     {LiveSeries::cpuSystem, "System", WidgetKind::cpu, true}},
                    {.full = 100, .text = [](double value) { return QString("%1 %").arg(value); }}};
};

TEST_F(TimeChartTest, SpeaksItsLatestValues) {
    refresh();
    EXPECT_EQ(spoken(), "Total —, System —"); // before anything was sampled
    sample(1, 20);
    sample(2, 30);
    refresh();
    EXPECT_EQ(spoken(), "Total 30 %, System 15 %");
    EXPECT_EQ(chart.accessibleName(), "Total, System over time");
}

TEST_F(TimeChartTest, StandsStillWhilePausedAndGoesOn) {
    sample(1, 20);
    refresh();
    QTest::keyClick(&chart, Qt::Key_Space);
    EXPECT_TRUE(chart.isPaused());
    const QImage before = chart.grab().toImage();
    sample(2, 90);
    refresh();
    EXPECT_EQ(chart.grab().toImage(), before);
    EXPECT_EQ(spoken(), "Total 20 %, System 10 %");
    QTest::mouseClick(&chart, Qt::LeftButton);
    EXPECT_FALSE(chart.isPaused());
    EXPECT_EQ(spoken(), "Total 90 %, System 45 %"); // what it missed
}

TEST_F(TimeChartTest, LeavesAGapWhereNothingWasSampled) {
    for (int second = 0; second <= 60; ++second)
        if (second < 25 || second > 35) sample(second, 80);
    refresh();
    EXPECT_TRUE(isFilled(0.2));
    EXPECT_FALSE(isFilled(0.5));
    EXPECT_TRUE(isFilled(0.8));
}

TEST_F(TimeChartTest, TheHairLineGoesWithTheKeysAndAway) {
    for (int second = 0; second <= 60; ++second) sample(second, second);
    refresh();
    const QImage without = chart.grab().toImage();
    QTest::keyClick(&chart, Qt::Key_Left);
    const QImage newest = chart.grab().toImage();
    EXPECT_NE(newest, without);
    for (int i = 0; i < 100; ++i) QTest::keyClick(&chart, Qt::Key_Left); // beyond the oldest
    EXPECT_NE(chart.grab().toImage(), newest);
    QTest::keyClick(&chart, Qt::Key_Escape);
    EXPECT_EQ(chart.grab().toImage(), without);
}

} // namespace
} // namespace quarn::desktop
