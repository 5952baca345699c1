#pragma once

#include "core/linux/BlockDevices.h"
#include "core/linux/Files.h"
#include "core/platform.h"

#include <memory>
#include <vector>

namespace sysinfo::platform {

class InterfaceReader;
class LinkReader;
class ProcessTable;

/// What one handle keeps open. Each reader file of this folder uses its own members.
class Readers {
public:
    explicit Readers(const SystemRoot& root);
    ~Readers();
    Readers(const Readers&) = delete;
    Readers& operator=(const Readers&) = delete;

    const SystemRoot root;
    KeptTable stat;
    KeptTable meminfo;
    KeptTable vmstat;
    KeptTable memoryPressure;
    KeptTable uptime;
    KeptTable loadavg;
    KeptTable diskstats;
    DriveNames driveNames;             ///< of the lines of diskstats
    std::vector<KeptTable> zram;       ///< mm_stat of each compressed RAM disk
    unsigned zramAge = 0;              ///< readings since the RAM disks were looked for; 0 looks now
    std::shared_ptr<LinkReader> links; ///< opened with the first listing, as the next
    std::shared_ptr<InterfaceReader> interfaces;
    std::unique_ptr<ProcessTable> processes;
};

} // namespace sysinfo::platform
