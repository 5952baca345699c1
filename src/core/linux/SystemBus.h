#pragma once

#include <functional>
#include <memory>

namespace sysinfo::platform {

/// A connection to the system bus that listens for logind's PrepareForSleep. The client library is loaded
/// when it is first needed, so that programs start quickly and run where it is missing.
class SystemBus {
public:
    /// `prepareForSleep(true)` comes before the machine sleeps, `(false)` after it woke.
    /// Null where there is no bus, no library or no permission.
    static std::unique_ptr<SystemBus> connect(std::function<void(bool)> prepareForSleep);
    virtual ~SystemBus() = default;

    virtual int fd() const = 0;
    virtual short events() const = 0;
    /// Handles what has arrived; false once the connection is lost.
    virtual bool process() = 0;
};

} // namespace sysinfo::platform
