#pragma once

#include "core/InterfaceList.h"
#include "core/Storage.h"
#include "monitor/Snapshot.h"
#include "monitor/Throttled.h"

namespace quarn {

/// The disks and the network interfaces with their rates since the reading before. Belongs to one queue.
class DeviceLists {
public:
    explicit DeviceLists(const sysinfo::SystemRoot& root) : diskReader_(root) {}

    /// Reads both lists at `now`, in steady seconds. A device is compared only with the one of its name; one
    /// that is new, or whose counter fell, has rate 0.
    void sample(sysinfo::platform::Readers& readers, double now);

    bool isTaken() const { return disks_.isTaken(); }
    const SharedList<DiskDevice>& disks() const { return disks_.cached; }
    const SharedList<NetInterface>& interfaces() const { return interfaces_.cached; }

private:
    void sampleDisks(sysinfo::platform::Readers& readers, double now);
    void sampleInterfaces(sysinfo::platform::Readers& readers, double now);

    sysinfo::DiskDeviceList diskReader_;
    sysinfo::InterfaceList interfaceReader_;
    Throttled<SharedList<DiskDevice>> disks_;
    Throttled<SharedList<NetInterface>> interfaces_;
};

} // namespace quarn
