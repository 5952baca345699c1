// Every page of the window over machines of every kind.
#include "desktop/WindowFixture.h"

#include <QApplication>
#include <QImage>
#include <gtest/gtest.h>

namespace quarn::testing {
namespace {

struct Machine {
    const char* name;
    Snapshot snapshot;
};

std::vector<Machine> machines() {
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
    auto& window = fixture.window();
    window.resize(900, 600);
    window.show();
    for (const auto& machine : machines()) {
        window.refresh(machine.snapshot, SampleMachine::known());
        for (const auto& page : desktop::pageTable()) {
            SCOPED_TRACE(std::string(machine.name) + ", " + page.id);
            window.open(page.id);
            window.refresh(machine.snapshot, SampleMachine::known());
            QApplication::processEvents();
            EXPECT_EQ(window.currentPage(), page.id);
            EXPECT_FALSE(window.grab().isNull());
            EXPECT_EQ(window.width(), 900) << "a page forces the window wider";
        }
    }
}

} // namespace
} // namespace quarn::testing
