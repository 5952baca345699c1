// What the CPU, memory and GPU pages say where nothing is known, and of very many cores.
#include "desktop/WindowFixture.h"
#include "desktop/widgets/CoreBars.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/RangePicker.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QToolTip>
#include <gtest/gtest.h>

namespace quarn::testing {
namespace {

class HardwarePages : public ::testing::Test {
protected:
    HardwarePages() {
        window.resize(900, 600);
        window.show();
    }
    desktop::Page* show(const char* page, const Snapshot& snapshot, const Known& known) {
        window.open(page);
        window.refresh(snapshot, known);
        QApplication::processEvents();
        for (auto* shown : window.findChildren<desktop::Page*>())
            if (shown->isVisible()) return shown;
        return nullptr;
    }

    WindowFixture fixture{SampleMachine{}.history(10)};
    desktop::MainWindow& window = fixture.window();
};

TEST_F(HardwarePages, EveryUnknownFigureSaysWhy) {
    Snapshot nothing;
    nothing.gpu = {
        .device = -1, .renderer = -1, .tiler = -1, .memUsed = 0, .memAlloc = 1}; // there, but silent
    Known known;
    known.rates = known.processRates = known.cpu = known.memory = known.memoryParts = known.uptime = false;
    for (const char* id : {"cpu", "memory", "gpu"}) {
        const auto* page = show(id, nothing, known);
        size_t unknown = 0;
        for (const auto* table : page->findChildren<desktop::FactTable*>()) {
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

TEST_F(HardwarePages, EachOfManyCoresTellsItsFigures) {
    const Snapshot snapshot = SampleMachine{.cores = 512}.at(5);
    auto* bars = show("cpu", snapshot, {})->findChild<desktop::CoreBars*>();
    const QPoint last(bars->width() - 3, 3); // of the first row
    QHelpEvent hover(QEvent::ToolTip, last, bars->mapToGlobal(last));
    QApplication::sendEvent(bars, &hover);
    EXPECT_TRUE(QToolTip::text().startsWith("Core 47: ")) << QToolTip::text().toStdString();
    QToolTip::hideText();
}

TEST_F(HardwarePages, TheRangeIsStoredAndFollowed) {
    auto& stored = Prefs::shared().historyRange;
    auto* picker = show("cpu", SampleMachine{}.at(5), {})->findChild<desktop::RangePicker*>();
    Q_EMIT picker->activated(2);
    EXPECT_EQ(stored.get(), HistoryRange::thirtyMinutes);
    stored.set(HistoryRange::fiveMinutes);
    EXPECT_EQ(picker->follow(), 300);
    EXPECT_EQ(picker->currentText(), "5 minutes");
    stored.reset();
}

} // namespace
} // namespace quarn::testing
