// The ways from the overview to the other pages.
#include "desktop/WindowFixture.h"
#include "desktop/widgets/ApplicationList.h"
#include "desktop/widgets/AttentionList.h"
#include "desktop/widgets/Figure.h"
#include "desktop/widgets/RowButton.h"
#include "desktop/widgets/Tile.h"

#include <QAbstractButton>

namespace quarn::testing {
namespace {

using namespace std::chrono_literals;

struct Overview : ::testing::Test {
    Overview() {
        fixture.open("overview", {1200, 800});
        Snapshot snapshot = SampleMachine{}.at(30);
        snapshot.mem.pressureLevel = 4;
        fixture.show(snapshot);
    }
    template <class List>
    desktop::RowButton* firstRow() {
        return window.findChild<List*>()->template findChild<desktop::RowButton*>();
    }

    WindowFixture fixture{SampleMachine{}.history(30)};
    desktop::MainWindow& window = fixture.window();
};

TEST_F(Overview, EveryTileOpensItsPage) {
    const QStringList pages{"cpu", "memory", "gpu", "sensors", "network", "disks", "power"};
    QStringList opened;
    for (auto* tile : window.findChildren<desktop::Tile*>()) {
        window.open("overview");
        QTest::keyClick(tile, Qt::Key_Return);
        opened.append(window.currentPage());
    }
    EXPECT_EQ(opened, pages);
}

TEST_F(Overview, AnApplicationIsFoundAmongTheApplications) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return firstRow<desktop::ApplicationList>() != nullptr; }));
    auto* row = firstRow<desktop::ApplicationList>();
    EXPECT_TRUE(row->accessibleName().contains(" %")) << row->accessibleName().toStdString();
    QTest::mouseClick(row, Qt::LeftButton);
    EXPECT_EQ(window.currentPage(), "applications");
}

TEST_F(Overview, TellsWhichApplicationsWereBusyInTheLastHalfHour) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return firstRow<desktop::ApplicationList>() != nullptr; }));
    const auto now = std::chrono::system_clock::now();
    for (const auto& [at, ms] : {std::pair(now - 2s, 9000U), std::pair(now - 1s, 700U)})
        fixture.records().live().addApps(at, std::vector{AppActivity{"/editor", 5, {ms * 1'000'000}}});
    for (auto* button : fixture.page().findChildren<QAbstractButton*>())
        if (button->text() == "Half hour") button->click();
    EXPECT_EQ(firstRow<desktop::ApplicationList>()->accessibleName(), "editor, CPU time 0.70 s, Memory 5 B");
}

TEST_F(Overview, WhatNeedsAttentionOpensItsPage) {
    auto* row = firstRow<desktop::AttentionList>();
    ASSERT_NE(row, nullptr);
    EXPECT_TRUE(row->accessibleName().startsWith("Critical: Memory is very short"));
    QTest::keyClick(row, Qt::Key_Return);
    EXPECT_EQ(window.currentPage(), "memory");
}

TEST_F(Overview, FiguresCrossFadeOnlyWhereThatIsWanted) {
    auto& figure = *window.findChild<desktop::Figure*>();
    const auto plain = [&] {
        desktop::Figure still(figure.parentWidget());
        still.ensurePolished();
        still.resize(figure.size());
        still.setText(figure.text());
        return still.grab().toImage();
    };
    for (const bool wanted : {false, true}) {
        Prefs::shared().crossfadeValues.set(wanted);
        window.refresh(SampleMachine{}.at(wanted ? 40 : 50), SampleMachine::known());
        EXPECT_EQ(figure.grab().toImage() == plain(), !wanted);
        EXPECT_TRUE(QTest::qWaitFor([&] { return figure.grab().toImage() == plain(); }));
    }
    Prefs::shared().crossfadeValues.reset();
}

} // namespace
} // namespace quarn::testing
