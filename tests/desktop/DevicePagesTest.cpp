// The pages of devices: what they show of a machine, of one that tells nothing, and of very many cores.
#include "desktop/WindowFixture.h"
#include "desktop/widgets/CoreBars.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/RangePicker.h"
#include "desktop/widgets/SensorModel.h"
#include "desktop/widgets/TableView.h"

#include <QClipboard>
#include <QHelpEvent>
#include <QPushButton>
#include <QToolTip>

namespace quarn::testing {
namespace {

struct DevicePages : ::testing::Test {
    desktop::Page& open(const char* page, const Snapshot& shown,
                        const Known& known = SampleMachine::known()) {
        fixture.open(page).refresh(shown, known);
        QApplication::processEvents();
        return fixture.page();
    }
    /// All texts of labels on a page, a line each.
    static QString texts(QWidget& page) {
        QStringList lines;
        for (auto* label : page.findChildren<QLabel*>())
            if (label->isVisible()) lines << label->text();
        return lines.join('\n');
    }
    static QAbstractItemModel& table(QWidget& page, const char* name) {
        return *named<desktop::TableView>(page, name).model();
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

TEST_F(DevicePages, EveryUnknownFigureSaysWhy) {
    Snapshot nothing;
    nothing.gpu = {
        .device = -1, .renderer = -1, .tiler = -1, .memUsed = 0, .memAlloc = 1}; // there, but silent
    Known known;
    known.rates = known.processRates = known.cpu = known.memory = known.memoryParts = known.uptime = false;
    for (const char* id : {"cpu", "memory", "gpu"}) {
        QWidget& page = open(id, nothing, known);
        size_t unknown = 0;
        for (const auto* table : page.findChildren<desktop::FactTable*>()) {
            for (const auto* label : table->findChildren<QLabel*>()) {
                EXPECT_FALSE(label->text() == "0" || label->text().startsWith("0 "))
                    << id << ": a zero that lies";
                if (label->text() != "—") continue;
                ++unknown;
                EXPECT_GT(label->toolTip().size(), 3) << id;
            }
        }
        EXPECT_GT(unknown, 5U) << id;
    }
}

TEST_F(DevicePages, EachOfManyCoresTellsItsFigures) {
    auto* bars = open("cpu", SampleMachine{.cores = 512}.at(5)).findChild<desktop::CoreBars*>();
    const QPoint last(bars->width() - 3, 3); // of the first row
    QHelpEvent hover(QEvent::ToolTip, last, bars->mapToGlobal(last));
    QApplication::sendEvent(bars, &hover);
    EXPECT_TRUE(QToolTip::text().startsWith("Core 47: ")) << QToolTip::text().toStdString();
    QToolTip::hideText();
}

TEST_F(DevicePages, TheRangeIsStoredAndFollowed) {
    auto& stored = Prefs::shared().historyRange;
    auto* picker = open("cpu", snapshot).findChild<desktop::RangePicker*>();
    Q_EMIT picker->activated(2);
    EXPECT_EQ(stored.get(), HistoryRange::thirtyMinutes);
    stored.set(HistoryRange::fiveMinutes);
    EXPECT_EQ(picker->follow(), 300);
    EXPECT_EQ(picker->currentText(), "5 minutes");
    stored.reset();
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
