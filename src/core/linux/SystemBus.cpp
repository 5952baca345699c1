#include "core/linux/SystemBus.h"

#include <dlfcn.h>
#include <systemd/sd-bus.h>

namespace sysinfo::platform {

namespace {

/// The few functions that are used of libsystemd.
struct Library {
    decltype(&sd_bus_open_system) openSystem = nullptr;
    decltype(&sd_bus_match_signal_async) matchSignal = nullptr;
    decltype(&sd_bus_process) process = nullptr;
    decltype(&sd_bus_get_fd) getFd = nullptr;
    decltype(&sd_bus_get_events) getEvents = nullptr;
    decltype(&sd_bus_message_read_basic) readBasic = nullptr;
    decltype(&sd_bus_flush_close_unref) close = nullptr;

    /// Null when the library or one of its functions is missing.
    static const Library* load() {
        static const Library library;
        return library.complete_ ? &library : nullptr;
    }

private:
    Library() {
        void* handle = ::dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
        if (!handle) return;
        const auto find = [&](auto& function, const char* name) {
            function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(handle, name));
            return function != nullptr;
        };
        complete_ = find(openSystem, "sd_bus_open_system") &&
                    find(matchSignal, "sd_bus_match_signal_async") && find(process, "sd_bus_process") &&
                    find(getFd, "sd_bus_get_fd") && find(getEvents, "sd_bus_get_events") &&
                    find(readBasic, "sd_bus_message_read_basic") && find(close, "sd_bus_flush_close_unref");
    }

    bool complete_ = false;
};

class Connection final : public SystemBus {
public:
    Connection(const Library& library, sd_bus* bus, std::function<void(bool)> prepareForSleep)
        : systemd_(library), bus_(bus), prepareForSleep_(std::move(prepareForSleep)) {}
    ~Connection() override { systemd_.close(bus_); }

    /// Asks for the signals without waiting for the bus: it may be slow, or hang.
    bool listen() {
        return systemd_.matchSignal(bus_, nullptr, "org.freedesktop.login1", "/org/freedesktop/login1",
                                    "org.freedesktop.login1.Manager", "PrepareForSleep", received, nullptr,
                                    this) >= 0;
    }

    int fd() const override { return systemd_.getFd(bus_); }
    short events() const override { return static_cast<short>(systemd_.getEvents(bus_)); }
    bool process() override {
        int handled = 0;
        do handled = systemd_.process(bus_, nullptr);
        while (handled > 0);
        return handled == 0;
    }

private:
    static int received(sd_bus_message* message, void* self, sd_bus_error*) {
        auto& connection = *static_cast<Connection*>(self);
        int starting = 0;
        if (connection.systemd_.readBasic(message, 'b', &starting) > 0)
            connection.prepareForSleep_(starting != 0);
        return 0;
    }

    const Library& systemd_;
    sd_bus* bus_;
    std::function<void(bool)> prepareForSleep_;
};

} // namespace

std::unique_ptr<SystemBus> SystemBus::connect(std::function<void(bool)> prepareForSleep) {
    const Library* library = Library::load();
    sd_bus* bus = nullptr;
    if (!library || library->openSystem(&bus) < 0) return nullptr;
    auto connection = std::make_unique<Connection>(*library, bus, std::move(prepareForSleep));
    if (!connection->listen()) return nullptr;
    return connection;
}

} // namespace sysinfo::platform
