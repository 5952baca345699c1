#include "core/SystemEvents.h"

#include "core/linux/DeviceEvent.h"
#include "core/linux/SystemBus.h"
#include "support/TempRoot.h"

#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace {

using namespace std::string_view_literals;

TEST(DeviceEvent, OnlyPowerSuppliesConcern) {
    using sysinfo::platform::concernsPowerSupply;
    EXPECT_TRUE(
        concernsPowerSupply("change@/devices/x/BAT0\0ACTION=change\0SUBSYSTEM=power_supply\0SEQNUM=7\0"sv));
    EXPECT_FALSE(concernsPowerSupply("add@/devices/x\0ACTION=add\0SUBSYSTEM=usb\0NAME=power_supply\0"sv));
    EXPECT_FALSE(concernsPowerSupply("change@/x\0SUBSYSTEM=power_supply_2"sv));
    EXPECT_FALSE(concernsPowerSupply(""));
}

TEST(SystemEvents, StartsAndEndsWithoutAnySource) {
    sysinfo::SystemEvents({.powerSourceChanged = {}, .wokeUp = {}});
}

/// A bus daemon of the test's own in the place of the system's.
class PrivateBus {
public:
    PrivateBus() {
        const auto socket = (folder_.path() / "bus").string();
        folder_.write("bus.conf",
                      "<busconfig><type>system</type><listen>unix:path=" + socket +
                          "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                          "<allow user=\"*\"/><allow own=\"*\"/><allow send_destination=\"*\"/>"
                          "<allow send_type=\"signal\"/><allow receive_type=\"*\"/></policy></busconfig>");
        int ready[2];
        if (::pipe(ready) != 0) return;
        daemon_ = ::fork();
        if (daemon_ == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            const auto config = "--config-file=" + (folder_.path() / "bus.conf").string();
            const auto print = "--print-address=" + std::to_string(ready[1]);
            ::execlp("dbus-daemon", "dbus-daemon", config.c_str(), print.c_str(), "--nofork", nullptr);
            ::_exit(127);
        }
        ::close(ready[1]);
        char byte = 0;
        running_ = ::read(ready[0], &byte, 1) == 1; // the address comes once it listens
        ::close(ready[0]);
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + socket).c_str(), 1);
    }
    ~PrivateBus() {
        ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
        ::kill(daemon_, SIGKILL);
        ::waitpid(daemon_, nullptr, 0);
    }
    bool running() const { return running_; }

private:
    quarn::testing::TempRoot folder_;
    pid_t daemon_ = -1;
    bool running_ = false;
};

TEST(SystemBus, TellsOfSleepAndWaking) {
    const PrivateBus daemon;
    if (!daemon.running()) GTEST_SKIP() << "dbus-daemon is not installed";
    std::vector<bool> heard;
    const auto bus = sysinfo::platform::SystemBus::connect([&](bool sleeping) { heard.push_back(sleeping); });
    ASSERT_TRUE(bus);

    sd_bus* manager = nullptr;
    ASSERT_GE(sd_bus_open_system(&manager), 0);
    ASSERT_GE(sd_bus_request_name(manager, "org.freedesktop.login1", 0), 0);
    const auto emit = [&](const char* member, int value) {
        ASSERT_GE(sd_bus_emit_signal(manager, "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                                     member, "b", value),
                  0);
    };
    // The connection asks for the signals without waiting for the bus, so the first ones may be missed.
    for (int attempt = 0; attempt < 1000 && heard.size() < 2; ++attempt) {
        heard.clear();
        emit("PrepareForShutdown", 1);
        emit("PrepareForSleep", 1);
        emit("PrepareForSleep", 0);
        sd_bus_flush(manager);
        const auto arrives = [&] {
            pollfd wait{bus->fd(), bus->events(), 0};
            return ::poll(&wait, 1, 20) > 0;
        };
        do ASSERT_TRUE(bus->process());
        while (arrives());
    }
    EXPECT_EQ(heard, (std::vector<bool>{true, false}));
    sd_bus_flush_close_unref(manager);
}

} // namespace
