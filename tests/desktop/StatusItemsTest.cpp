// Status items: which there are, in what order, and when they are drawn.
#include "desktop/SampleMachine.h"
#include "desktop/tray/ModulePopover.h"
#include "desktop/tray/StatusIcon.h"
#include "desktop/tray/StatusItemController.h"
#include "ui/settings/Prefs.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPushButton>
#include <QSystemTrayIcon>

namespace quarn::testing {
namespace {

using namespace desktop;

struct StatusItems : ::testing::Test {
    ~StatusItems() override {
        for (auto* setting : prefs_.settings()) setting->reset();
    }

    void tick(int second) {
        controller_.snapshot(machine_.at(second), SampleMachine::known(), 100.0 + second);
    }
    MenuBarModule& module(WidgetKind kind) { return *controller_.modules().at(kind); }
    std::vector<WidgetKind> kinds() {
        std::vector<WidgetKind> result;
        for (const auto& [kind, module] : controller_.modules()) result.push_back(kind);
        return result;
    }
    QAction* action(const QMenu& menu, const QString& text) {
        for (auto* action : menu.actions())
            if (action->text() == text) return action;
        return nullptr;
    }

    Prefs& prefs_ = Prefs::shared();
    SampleMachine machine_;
    LiveHistory history_;
    bool hasTray_ = true;
    int windows_ = 0;
    QString page_;
    StatusItemController controller_{
        prefs_, history_,
        StatusItemActions{[this] { ++windows_; }, [this](const QString& page) { page_ = page; }},
        [this] { return hasTray_; }};
};

using Kinds = std::vector<WidgetKind>;

TEST_F(StatusItems, FollowTheSettings) {
    controller_.prefsChanged();
    EXPECT_NE(controller_.plainItem(), nullptr) << "without modules the application is still reachable";
    prefs_.menuBarItem.set(2); // memory
    prefs_.menuBarDetailed.set({"cpu", "disk"});
    controller_.prefsChanged();
    EXPECT_EQ(controller_.plainItem(), nullptr);
    EXPECT_EQ(kinds(), (Kinds{WidgetKind::cpu, WidgetKind::memory, WidgetKind::disk}));
    EXPECT_FALSE(module(WidgetKind::memory).isDetailed());
    EXPECT_TRUE(module(WidgetKind::disk).isDetailed());
    const auto* memory = &module(WidgetKind::memory);

    prefs_.menuBarDetailed.set({"disk", "memory"});
    controller_.prefsChanged();
    EXPECT_EQ(kinds(), (Kinds{WidgetKind::memory, WidgetKind::disk}));
    EXPECT_EQ(&module(WidgetKind::memory), memory) << "its graph is kept";
    EXPECT_TRUE(module(WidgetKind::memory).isDetailed());

    prefs_.menuBarItem.reset();
    prefs_.menuBarDetailed.reset();
    controller_.prefsChanged();
    EXPECT_TRUE(kinds().empty());
    EXPECT_NE(controller_.plainItem(), nullptr);
}

TEST_F(StatusItems, WaitForATrayThatComesLater) {
    hasTray_ = false;
    prefs_.menuBarDetailed.set({"cpu"});
    controller_.prefsChanged();
    EXPECT_TRUE(kinds().empty());
    EXPECT_EQ(controller_.plainItem(), nullptr);
    hasTray_ = true;
    EXPECT_TRUE(controller_.isWaitingForTray());
    controller_.prefsChanged(); // as its timer does
    EXPECT_EQ(kinds(), Kinds{WidgetKind::cpu});
    EXPECT_FALSE(controller_.isWaitingForTray());
}

TEST_F(StatusItems, AnUnchangedItemIsNotDrawnAgain) {
    prefs_.menuBarDetailed.set({"cpu", "memory", "gpu", "temperature", "network", "disk", "power"});
    controller_.prefsChanged();
    tick(1);
    std::map<WidgetKind, int> drawn;
    for (const auto& [kind, module] : controller_.modules()) drawn[kind] = module->redraws();
    tick(1);
    for (const auto& [kind, module] : controller_.modules())
        EXPECT_EQ(module->redraws(), drawn[kind]) << widgetKindId(kind);
    controller_.prefsChanged();
    EXPECT_EQ(module(WidgetKind::cpu).redraws(), drawn[WidgetKind::cpu]) << "no setting of it changed";
    tick(20);
    EXPECT_EQ(module(WidgetKind::cpu).redraws(), drawn[WidgetKind::cpu] + 1);
    prefs_.menuBarStyle.set(0);
    controller_.prefsChanged();
    EXPECT_EQ(module(WidgetKind::cpu).redraws(), drawn[WidgetKind::cpu] + 2);
}

TEST_F(StatusItems, AGraphAloneIsNotDrawnForFigures) {
    MenuBarModule graph(WidgetKind::cpu), value(WidgetKind::cpu);
    graph.applyLength(MenuBarStyle::graphOnly, 60, history_);
    value.applyLength(MenuBarStyle::valueOnly, 60, history_);
    Snapshot snapshot;
    double time = 100;
    for (const double cpu : {10.0, 20.0, 20.2}) { // within one slice
        snapshot.cpu.total = cpu;
        for (auto* module : {&graph, &value}) module->update({snapshot}, time += 0.5);
    }
    EXPECT_EQ(graph.redraws(), 1);
    EXPECT_EQ(value.redraws(), 2) << "20 and 20.2 look the same";
    EXPECT_TRUE(graph.item().toolTip().contains("20 %")) << "the whole reading is told without drawing";
    for (int i = 0; i < 100; ++i) graph.update({snapshot}, time += 2);
    const int settled = graph.redraws();
    for (int i = 0; i < 100; ++i) graph.update({snapshot}, time += 2);
    EXPECT_EQ(graph.redraws(), settled) << "a steady machine";
}

TEST_F(StatusItems, ANewGraphBeginsWithWhatIsKnown) {
    history_ = machine_.history(60);
    MenuBarModule module(WidgetKind::cpu);
    const auto shown = [&] {
        const Snapshot snapshot = machine_.at(60);
        module.show({snapshot});
        const auto& graph = module.rendered()->graph;
        return std::pair(graph.size(),
                         std::count_if(graph.begin(), graph.end(), [](double s) { return s >= 0; }));
    };
    EXPECT_EQ(shown(), std::pair(size_t{15}, std::ptrdiff_t{0}));
    module.applyDetailMode(false, history_);
    EXPECT_GE(shown().second, 13);
    module.applyDetailMode(true, history_);
    EXPECT_EQ(shown().first, 30U);
    EXPECT_GE(shown().second, 26);
    module.applyLength(MenuBarStyle::both, 20, history_);
    EXPECT_GE(shown().second, 10) << "and with another span";
}

TEST_F(StatusItems, AreDrawnForTheSizeOfTheTray) {
    MenuBarModule module(WidgetKind::cpu);
    Snapshot snapshot;
    snapshot.cpu.total = 100;
    for (const auto style : {MenuBarStyle::valueOnly, MenuBarStyle::graphOnly, MenuBarStyle::both}) {
        module.applyLength(style, 60, history_);
        for (int i = 0; i < 60; ++i) module.update({snapshot}, i);
        const QIcon icon = statusIcon(*module.rendered());
        for (const int size : {16, 22, 24, 32}) {
            const QImage image = icon.pixmap(size).toImage();
            EXPECT_EQ(image.size(), QSize(size, size));
            int graph = 0, text = 0;
            for (int y = 0; y < size; ++y)
                for (int x = 0; x < size; ++x) {
                    graph += image.pixelColor(x, y) == module.rendered()->graphColor;
                    const QColor pixel = image.pixelColor(x, y);
                    text += pixel.alpha() > 128 && pixel.lightness() < 80 && pixel.hsvSaturation() < 128;
                }
            EXPECT_GE(graph, style == MenuBarStyle::valueOnly ? size : size * size / 4) << size;
            EXPECT_EQ(text >= size / 2, style != MenuBarStyle::graphOnly) << size;
        }
    }
}

TEST_F(StatusItems, TheMenuStoresWhatIsChosen) {
    controller_.prefsChanged();
    auto& menu = controller_.menu();
    auto* profiles = action(menu, "Sampling profile")->menu();
    EXPECT_TRUE(action(*profiles, "Normal")->isChecked());
    action(*profiles, "Power saving")->trigger();
    EXPECT_EQ(prefs_.samplingProfile.get(), "powerSaving");
    auto* panels = action(menu, "Panels")->menu();
    action(*panels, "GPU")->trigger();
    EXPECT_EQ(prefs_.widgets.get(), std::vector<std::string>{"gpu"});
    prefs_.widgets.set({"cpu"});
    prefs_.samplingProfile.set("normal");
    controller_.prefsChanged();
    EXPECT_FALSE(action(*panels, "GPU")->isChecked());
    EXPECT_TRUE(action(*panels, "CPU")->isChecked());
    EXPECT_TRUE(action(*profiles, "Normal")->isChecked());
    action(menu, "Open Quarn")->trigger();
    EXPECT_EQ(windows_, 1);
    action(menu, "Settings…")->trigger();
    EXPECT_EQ(page_, "settings");
}

TEST_F(StatusItems, TheInformationChangesOnlyWhileTheMenuIsOpen) {
    auto& menu = controller_.menu();
    auto* info = menu.actions().front();
    EXPECT_FALSE(info->isEnabled());
    int told = 0;
    QObject::connect(info, &QAction::changed, [&] { ++told; });
    for (int second = 1; second < 9; ++second) tick(second);
    EXPECT_EQ(told, 0);
    Q_EMIT menu.aboutToShow();
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(info->text().contains("memory")) << qPrintable(info->text());
}

TEST_F(StatusItems, APopoverOpensAndClosesWithItsItem) {
    prefs_.menuBarDetailed.set({"cpu", "memory"});
    controller_.prefsChanged();
    tick(1);
    std::vector<bool> told;
    QObject::connect(&controller_, &StatusItemController::panelShown,
                     [&](bool shown) { told.push_back(shown); });
    const auto open = [] {
        for (auto* window : QApplication::topLevelWidgets())
            if (auto* popover = qobject_cast<ModulePopover*>(window); popover && popover->isVisible())
                return popover;
        return static_cast<ModulePopover*>(nullptr);
    };
    for (const auto kind : {WidgetKind::cpu, WidgetKind::memory}) {
        controller_.buttonClicked(kind);
        ASSERT_NE(open(), nullptr);
        EXPECT_EQ(open()->kind(), kind) << "one at a time";
    }
    controller_.buttonClicked(WidgetKind::memory);
    EXPECT_EQ(open(), nullptr);
    controller_.buttonClicked(WidgetKind::cpu);
    ASSERT_NE(open(), nullptr);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(open(), &escape);
    EXPECT_EQ(open(), nullptr);
    EXPECT_EQ(told, (std::vector{true, false, true, false, true, false}));
    EXPECT_EQ(windows_, 0);
    controller_.buttonClicked(WidgetKind::memory);
    ASSERT_NE(open(), nullptr);
    open()->findChild<QPushButton*>()->click();
    EXPECT_EQ(windows_, 1);
    EXPECT_EQ(open(), nullptr);
}

} // namespace
} // namespace quarn::testing
