#include "core/SystemEvents.h"

#include "core/Scan.h"
#include "core/UniqueFd.h"
#include "core/linux/DeviceEvent.h"
#include "core/linux/SystemBus.h"

#include <array>
#include <cstdint>
#include <linux/netlink.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>

namespace sysinfo {

namespace {

scutil::UniqueFd openDeviceEvents() {
    scutil::UniqueFd socket(
        ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = 1; // what the kernel itself sends
    if (!socket || ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return {};
    return socket;
}

} // namespace

namespace platform {

bool concernsPowerSupply(std::string_view message) {
    while (!message.empty())
        if (scutil::takeUntil(message, '\0') == "SUBSYSTEM=power_supply") return true;
    return false;
}

} // namespace platform

class SystemEvents::Watcher {
public:
    explicit Watcher(Handlers handlers)
        : handlers_(std::move(handlers)), stop_(::eventfd(0, EFD_CLOEXEC)), thread_([this] { run(); }) {}
    ~Watcher() {
        const uint64_t one = 1;
        if (::write(stop_.get(), &one, sizeof one) == sizeof one) thread_.join();
    }

private:
    void run() {
        const auto devices = handlers_.powerSourceChanged ? openDeviceEvents() : scutil::UniqueFd();
        auto bus = platform::SystemBus::connect([this](bool goingToSleep) {
            const auto& handler = goingToSleep ? handlers_.goingToSleep : handlers_.wokeUp;
            if (handler) handler();
        });
        if (bus && !bus->process()) bus.reset();
        for (;;) {
            std::array<pollfd, 3> waits{pollfd{stop_.get(), POLLIN, 0}, pollfd{devices.get(), POLLIN, 0},
                                        pollfd{bus ? bus->fd() : -1, bus ? bus->events() : short{0}, 0}};
            if (::poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) return;
            if (waits[0].revents) return;
            if (waits[1].revents) readDeviceEvents(devices.get());
            if (waits[2].revents && !bus->process()) bus.reset();
        }
    }

    void readDeviceEvents(int socket) {
        std::array<char, 8192> buffer;
        bool changed = false;
        for (;;) {
            const auto length = ::recv(socket, buffer.data(), buffer.size(), 0);
            if (length <= 0) break;
            changed |= platform::concernsPowerSupply({buffer.data(), static_cast<size_t>(length)});
        }
        if (changed && handlers_.powerSourceChanged) handlers_.powerSourceChanged();
    }

    Handlers handlers_;
    scutil::UniqueFd stop_;
    std::thread thread_;
};

SystemEvents::SystemEvents(Handlers handlers) : watcher_(std::make_unique<Watcher>(std::move(handlers))) {}
SystemEvents::~SystemEvents() = default;

} // namespace sysinfo
