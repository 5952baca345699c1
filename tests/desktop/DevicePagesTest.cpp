// The pages of devices: what they show of a machine, of one without devices, and of captured ones.
#include "desktop/WindowFixture.h"
#include "desktop/widgets/SensorModel.h"
#include "desktop/widgets/TableView.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace quarn::testing {
namespace {

class DevicePages : public ::testing::Test {
protected:
    QWidget& open(const char* page, const Snapshot& shown) {
        auto& window = fixture.window();
        window.resize(900, 600);
        window.show();
        window.open(page);
        window.refresh(shown, SampleMachine::known());
        QApplication::processEvents();
        return *window.findChild<QStackedWidget*>()->currentWidget();
    }
    /// All texts of labels on a page, a line each.
    static QString texts(QWidget& page) {
        QStringList lines;
        for (auto* label : page.findChildren<QLabel*>())
            if (label->isVisible()) lines << label->text();
        return lines.join('\n');
    }
    static QAbstractItemModel& table(QWidget& page, const char* name) {
        for (auto* view : page.findChildren<desktop::TableView*>())
            if (view->accessibleName() == name) return *view->model();
        throw std::runtime_error(name);
    }

    WindowFixture fixture{SampleMachine{}.history(60)};
    Snapshot snapshot = SampleMachine{}.at(30);
};

TEST_F(DevicePages, TheSelectedInterfaceIsTheOneThatIsDescribed) {
    QWidget& page = open("network", snapshot);
    auto* view = page.findChild<desktop::TableView*>();
    ASSERT_EQ(view->model()->rowCount(), 2);
    EXPECT_TRUE(texts(page).contains("eth0")) << texts(page).toStdString();
    view->setCurrentIndex(view->model()->index(1, 0));
    EXPECT_FALSE(texts(page).split('\n').contains("eth0"));
    EXPECT_TRUE(texts(page).split('\n').contains("wlan0"));

    snapshot.interfaces = {snapshot.interfaces[0]}; // wlan0 was unplugged
    open("network", snapshot);
    EXPECT_TRUE(texts(page).split('\n').contains("eth0"));
    snapshot.interfaces = {};
    open("network", snapshot);
    EXPECT_FALSE(texts(page).split('\n').contains("eth0")) << "nothing is left to describe";
}

TEST_F(DevicePages, NetworkRatesFollowTheSetting) {
    QWidget& page = open("network", snapshot);
    const auto receiving = [&] { return table(page, "Interfaces").index(0, 2).data().toString(); };
    EXPECT_TRUE(receiving().endsWith("B/s")) << receiving().toStdString();
    Prefs::shared().networkInBits.set(true);
    open("network", snapshot);
    EXPECT_TRUE(receiving().endsWith("b/s")) << receiving().toStdString();
    Prefs::shared().networkInBits.reset();
}

TEST_F(DevicePages, VolumesComeFromBesides) {
    QWidget& page = open("disks", snapshot);
    EXPECT_EQ(table(page, "Disks").rowCount(), 2);
    const auto mounted = static_cast<int>(fixture.monitor().volumes().size());
    if (mounted == 0) GTEST_SKIP() << "nothing is mounted here that is a volume, as in some containers";
    EXPECT_TRUE(QTest::qWaitFor([&] { return table(page, "Volumes").rowCount() == mounted; }));
}

TEST_F(DevicePages, SensorsStandUnderTheirPartInTheirUnit) {
    QWidget& page = open("sensors", snapshot);
    auto& tree = table(page, "Sensors");
    const QModelIndex cpu = tree.index(0, 0);
    EXPECT_EQ(cpu.data().toString(), "CPU");
    ASSERT_EQ(tree.rowCount(cpu), 3);
    EXPECT_EQ(tree.index(1, 1, cpu).data().toString(), "51.0 °C");
    Prefs::shared().fahrenheit.set(true);
    open("sensors", snapshot);
    EXPECT_EQ(tree.index(1, 1, cpu).data().toString(), "123.8 °F");
    Prefs::shared().fahrenheit.reset();
}

TEST_F(DevicePages, PowerTellsWhatIsMissing) {
    EXPECT_TRUE(texts(open("power", snapshot)).contains("4031 of 4400 mAh (92 %)"));
    snapshot.battery.reset();
    snapshot.power = {};
    snapshot.powerSource.clear();
    const QString none = texts(open("power", snapshot));
    EXPECT_TRUE(none.contains("This machine has no battery.")) << none.toStdString();
    EXPECT_TRUE(none.contains("Power by part is not known")) << none.toStdString();
}

TEST_F(DevicePages, TheSystemPageIsCopiedWhole) {
    QWidget& page = open("system", snapshot);
    page.findChild<QPushButton*>()->click();
    const QString copied = QApplication::clipboard()->text();
    for (const char* line : {"Machine\n", "\nProcessor\n", "  Kernel: ", "  Running for: 3 d 4 h"})
        EXPECT_TRUE(copied.contains(line)) << line << "\n" << copied.toStdString();
}

TEST(SensorModel, SortingKeepsThePartsInTheirOrder) {
    desktop::SensorModel model;
    model.setSections({{"CPU", 'T', {{"TC01", "a", 40, {}, {}, {}}, {"TC02", "b", 60, {}, 80, {}}}},
                       {"Fans", 'F', {{"F0Ac", "c", {}, {}, {}, "asleep"}}}},
                      {});
    model.sort(1, Qt::DescendingOrder);
    const QModelIndex cpu = model.index(0, 0), fans = model.index(1, 0);
    EXPECT_EQ(cpu.data().toString(), "CPU");
    EXPECT_EQ(model.index(0, 0, cpu).data().toString(), "b");
    EXPECT_EQ(model.index(0, 1, cpu).data(desktop::TableRole::barShare).toDouble(), 0.75) << "of its limit";
    EXPECT_EQ(model.index(0, 1, fans).data().toString(), "—");
    EXPECT_EQ(model.index(0, 1, fans).data(Qt::ToolTipRole).toString(), "asleep");
}

} // namespace
} // namespace quarn::testing
