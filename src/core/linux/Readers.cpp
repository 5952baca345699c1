#include "core/linux/Readers.h"

#include "core/linux/ProcessTable.h"

namespace sysinfo::platform {

Readers::Readers(const SystemRoot& systemRoot)
    : root(systemRoot),
      stat(root, "proc/stat"),
      meminfo(root, "proc/meminfo"),
      vmstat(root, "proc/vmstat"),
      memoryPressure(root, "proc/pressure/memory"),
      uptime(root, "proc/uptime"),
      loadavg(root, "proc/loadavg"),
      diskstats(root, "proc/diskstats"),
      processes(std::make_unique<ProcessTable>(root)) {}

Readers::~Readers() = default;

std::shared_ptr<Readers> openReaders(const SystemRoot& root) { return std::make_shared<Readers>(root); }

std::optional<std::span<const KernelProcess>> readProcesses(Readers& readers) {
    return readers.processes->read();
}

} // namespace sysinfo::platform
