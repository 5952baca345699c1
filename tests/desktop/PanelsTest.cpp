// Floating panels: which are open, where they stand, and how they are moved and closed.
#include "desktop/SampleMachine.h"
#include "desktop/UiState.h"
#include "desktop/panels/Placement.h"
#include "desktop/panels/WidgetManager.h"
#include "desktop/panels/WidgetPanel.h"
#include "desktop/widgets/FlashLabel.h"
#include "ui/settings/Prefs.h"

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QToolButton>

namespace quarn::testing {
namespace {

using namespace desktop;

struct Panels : ::testing::Test {
    ~Panels() override {
        for (auto* setting : prefs_.settings()) setting->reset();
        for (const WidgetKind kind : allWidgetKinds) UiState::setFrame(key(kind), {});
    }
    static QString key(WidgetKind kind) {
        return "panels/" + QString::fromStdString(std::string(widgetKindId(kind)));
    }
    WidgetPanel& panel(WidgetKind kind) { return *manager_.panels().at(kind); }
    void drag(WidgetPanel& panel, QPoint by) {
        const QPoint grip(40, 20);
        QTest::mousePress(&panel, Qt::LeftButton, {}, grip);
        const QPointF to = panel.mapToGlobal(grip) + by;
        QMouseEvent move(QEvent::MouseMove, panel.mapFromGlobal(to), to, Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&panel, &move);
        QTest::mouseRelease(&panel, Qt::LeftButton, {}, grip);
    }

    Prefs& prefs_ = Prefs::shared();
    LiveHistory history_ = SampleMachine{}.history(60);
    QRect screen_ = QGuiApplication::primaryScreen()->availableGeometry();
    WidgetManager manager_{prefs_, history_};
};

TEST_F(Panels, FollowTheSettings) {
    prefs_.widgets.set({"network", "cpu", "nonsense"});
    prefs_.widgetOpacity.set(0.5);
    prefs_.widgetsOnTop.set(false);
    manager_.applyPrefs();
    ASSERT_EQ(manager_.panels().size(), 2U);
    auto& cpu = panel(WidgetKind::cpu);
    EXPECT_TRUE(cpu.isVisible());
    EXPECT_NEAR(cpu.windowOpacity(), 0.5, 0.01);
    EXPECT_FALSE(cpu.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    const QPoint place = cpu.pos();
    prefs_.widgetsOnTop.set(true);
    manager_.applyPrefs();
    EXPECT_TRUE(cpu.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(cpu.isVisible());
    EXPECT_EQ(cpu.pos(), place) << "a change of flags hides and shows it";

    QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
    QApplication::sendEvent(&cpu, &enter);
    EXPECT_TRUE(cpu.hovered());
    EXPECT_EQ(cpu.windowOpacity(), 1);
    prefs_.widgetOpacity.set(0.7);
    manager_.applyPrefs();
    EXPECT_EQ(cpu.windowOpacity(), 1) << "still under the pointer";
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&cpu, &leave);
    EXPECT_NEAR(cpu.windowOpacity(), 0.7, 0.01);

    prefs_.widgets.set({});
    manager_.applyPrefs();
    EXPECT_TRUE(manager_.panels().empty());
}

TEST_F(Panels, TheCrossRemovesTheKindFromTheSettings) {
    prefs_.widgets.set({"cpu", "memory"});
    manager_.applyPrefs();
    auto& memory = panel(WidgetKind::memory);
    memory.findChild<QToolButton*>()->click();
    QApplication::processEvents();
    EXPECT_EQ(prefs_.widgets.get(), std::vector<std::string>{"cpu"});
    EXPECT_EQ(manager_.panels().size(), 1U);
    manager_.setEnabled(WidgetKind::gpu, true);
    EXPECT_EQ(prefs_.widgets.get(), (std::vector<std::string>{"cpu", "gpu"}));
    EXPECT_TRUE(panel(WidgetKind::gpu).isVisible());
}

TEST_F(Panels, ReopenWhereTheyWereLeft) {
    manager_.setEnabled(WidgetKind::cpu, true);
    const QPoint cascaded = panel(WidgetKind::cpu).pos();
    drag(panel(WidgetKind::cpu), {-137, 61});
    const QPoint left = panel(WidgetKind::cpu).pos();
    EXPECT_EQ(left, cascaded + QPoint(-137, 61));
    EXPECT_EQ(UiState::frame(key(WidgetKind::cpu))->topLeft(), left) << "saved as soon as it is let go";
    manager_.setEnabled(WidgetKind::cpu, false);
    manager_.setEnabled(WidgetKind::cpu, true);
    EXPECT_EQ(panel(WidgetKind::cpu).pos(), left);
}

TEST_F(Panels, ComeBackFromAScreenThatIsGone) {
    const QRect far(screen_.right() + 5000, screen_.bottom() + 300, 208, 132);
    UiState::setFrame(key(WidgetKind::cpu), far);
    manager_.setEnabled(WidgetKind::cpu, true);
    EXPECT_TRUE(screen_.contains(panel(WidgetKind::cpu).geometry()));
    // Unplugged for a while is not moved away: the place counts again when the screen is back.
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
    EXPECT_TRUE(screen_.contains(panel(WidgetKind::cpu).geometry()));
    EXPECT_EQ(UiState::frame(key(WidgetKind::cpu)), far);
}

TEST_F(Panels, NewOnesStandApartOnTheScreen) {
    std::vector<std::string> all(moduleTexts.begin(), moduleTexts.end());
    prefs_.widgets.set(all);
    manager_.applyPrefs();
    QList<QRect> frames;
    for (const auto& [kind, panel] : manager_.panels()) {
        EXPECT_TRUE(screen_.contains(panel->geometry())) << widgetKindId(kind);
        for (const QRect& other : frames)
            EXPECT_FALSE(other.intersects(panel->geometry())) << widgetKindId(kind);
        frames << panel->geometry();
    }
}

TEST_F(Panels, AValueFlashesWhenItChangesAndTheSettingAllowsIt) {
    const SampleMachine machine;
    const auto flashed = [&](bool allowed) {
        prefs_.flashChanges.set(allowed);
        manager_.setEnabled(WidgetKind::cpu, true);
        manager_.applyPrefs();
        const auto* value = panel(WidgetKind::cpu).findChild<FlashLabel*>();
        manager_.snapshot(machine.at(1), SampleMachine::known());
        bool seen = false;
        for (int second = 2; second < 20; ++second) {
            manager_.snapshot(machine.at(second), SampleMachine::known());
            seen |= value->isFlashing();
        }
        manager_.setEnabled(WidgetKind::cpu, false);
        return seen;
    };
    EXPECT_TRUE(flashed(true));
    EXPECT_FALSE(flashed(false));
}

TEST(Placement, WindowsStayVisible) {
    const QRect left(0, 0, 1000, 800), right(1000, 0, 1000, 800), low(0, 30, 1000, 770);
    const struct {
        const char* what;
        QRect frame;
        QList<QRect> screens;
        QPoint place;
    } cases[]{
        {"inside", {10, 20, 100, 50}, {left}, {10, 20}},
        {"on the second", {1500, 20, 100, 50}, {left, right}, {1500, 20}},
        {"across two", {960, 20, 100, 50}, {left, right}, {1000, 20}},
        {"second gone", {1500, 20, 100, 50}, {left}, {900, 20}},
        {"above a panel", {10, 0, 100, 50}, {low}, {10, 30}},
        {"nearest of two", {2300, 900, 100, 50}, {left, right}, {1900, 750}},
        {"larger than the screen", {50, 50, 2000, 1000}, {left}, {0, 0}},
        {"no screen", {50, 50, 10, 10}, {}, {50, 50}},
    };
    for (const auto& c : cases) EXPECT_EQ(keptVisible(c.frame, c.screens).topLeft(), c.place) << c.what;
}

TEST(Placement, PopoversStandBesideTheirItem) {
    const QRect screen(0, 0, 1000, 800);
    const QSize size(300, 200);
    EXPECT_EQ(besideAnchor(size, {500, 0, 20, 20}, screen), QPoint(359, 24));          // panel at the top
    EXPECT_EQ(besideAnchor(size, {500, 780, 20, 20}, screen), QPoint(359, 576));       // at the bottom
    EXPECT_EQ(besideAnchor(size, {990, 0, 10, 20}, screen).x(), 700) << "not cut off"; // in the corner
    EXPECT_TRUE(screen.contains(cascadePlace(size, screen, {screen}))) << "a full screen still has a place";
}

} // namespace
} // namespace quarn::testing
