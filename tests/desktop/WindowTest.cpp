// Every page of the window over machines of every kind.
#include "desktop/SearchField.h"
#include "desktop/Sidebar.h"
#include "desktop/WindowFixture.h"
#include "desktop/widgets/PageSearch.h"

#include <QImage>
#include <algorithm>

namespace quarn::testing {
namespace {

std::vector<std::pair<const char*, Snapshot>> machines() {
    Snapshot noSensors = SampleMachine{}.at(30);
    noSensors.temps = noSensors.fanKeys = noSensors.voltageKeys = SharedList<Sensor>();
    noSensors.battery.reset();
    noSensors.gpu = {.device = -1, .renderer = -1, .tiler = -1, .memUsed = 0, .memAlloc = 0};
    noSensors.power = {};
    return {{"everything", SampleMachine{}.at(30)},
            {"nothing at all", Snapshot()},
            {"no sensors, no battery, no GPU", noSensors},
            {"512 cores", SampleMachine{.cores = 512}.at(30)},
            {"20,000 processes", SampleMachine{.processes = 20'000}.at(30)}};
}

TEST(Window, EveryPageShowsEveryMachine) {
    WindowFixture fixture(SampleMachine{}.history(60));
    auto& window = fixture.open("overview");
    for (const auto& [name, snapshot] : machines()) {
        window.refresh(snapshot, SampleMachine::known());
        for (const auto& page : desktop::pageTable()) {
            SCOPED_TRACE(std::string(name) + ", " + page.id);
            window.open(page.id);
            window.refresh(snapshot, SampleMachine::known());
            QApplication::processEvents();
            EXPECT_EQ(window.currentPage(), page.id);
            EXPECT_FALSE(window.grab().isNull());
            EXPECT_EQ(window.width(), 900) << "a page forces the window wider";
        }
    }
}

TEST(Window, OpensAndOrdersPagesAsTheSettingsSay) {
    Prefs& prefs = Prefs::shared();
    prefs.rememberPage.set(false);
    prefs.startPage.set(6);
    prefs.sidebarLayout.set({{"network", "gone", "overview"}, {"gpu", "memory"}});
    WindowFixture fixture{LiveHistory()};
    auto& window = fixture.window();
    EXPECT_EQ(window.currentPage(), "gpu") << "the seventh of the table, shown in the sidebar or not";
    const QStringList shown = desktop::sidebarPages(prefs.sidebarLayout.get());
    EXPECT_EQ(shown.mid(0, 3), (QStringList{"network", "overview", "processes"}));
    EXPECT_FALSE(shown.contains("gpu"));
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window)) << "shortcuts belong to the active window";
    QTest::keyClick(&window, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window.currentPage(), "network") << "the first of the sidebar";

    prefs.rememberPage.reset();
    WindowFixture later{LiveHistory()};
    EXPECT_EQ(later.window().currentPage(), "network") << "the page shown last";
    for (const char* key : {"startPage", "sidebarLayout"}) prefs.find(key)->reset();
}

TEST(Window, FindsWithinThePageByKeys) {
    WindowFixture fixture(SampleMachine{}.history(60));
    auto& window = fixture.window();
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window)) << "shortcuts belong to the active window";
    window.refresh(SampleMachine{}.at(30), SampleMachine::known());
    for (const char* page : {"processes", "applications", "connections", "settings"}) {
        SCOPED_TRACE(page);
        window.open(page);
        QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
        auto* field = qobject_cast<desktop::PageSearch*>(QApplication::focusWidget());
        ASSERT_NE(field, nullptr);
        for (const auto key : {Qt::Key_Down, Qt::Key_Escape}) {
            field->setFocus();
            QTest::keyClick(field, Qt::Key_X);
            QTest::keyClick(field, key);
            EXPECT_EQ(field->text().isEmpty(), key == Qt::Key_Escape);
            EXPECT_FALSE(field->hasFocus());
            EXPECT_TRUE(window.focusWidget()->isVisible());
        }
    }
}

TEST(SearchField, FindsWhatIsMeant) {
    ResourceAppList apps;
    apps.apps.resize(20);
    for (auto& app : apps.apps) app.name = "Sheets";
    apps.apps[7].name = "Thunderbird Mail";
    const Snapshot snapshot = SampleMachine{}.at(30);
    const auto first = [&](const char* typed) {
        const auto hits = desktop::SearchField::hits(typed, &apps, snapshot.processes);
        return hits.empty() ? QString() : hits.front().page + ":" + hits.front().search;
    };
    EXPECT_EQ(first("  MEMO "), "memory:");
    EXPECT_EQ(first("firefox"), "processes:firefox");
    EXPECT_EQ(first("bird m"), "applications:Thunderbird Mail");
    EXPECT_EQ(first("1204"), "processes:1204") << "by number";
    EXPECT_EQ(first("fahrenheit"), "settings:fahrenheit");
    EXPECT_EQ(first("no such thing"), "");
    EXPECT_EQ(first(" "), "");
    const auto many = desktop::SearchField::hits("s", &apps, snapshot.processes);
    EXPECT_TRUE(std::any_of(many.begin(), many.end(), [](const auto& hit) { return hit.page == "settings"; }))
        << "many processes leave room for settings";
}

} // namespace
} // namespace quarn::testing
