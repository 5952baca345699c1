#include "ui/modules/Known.h"

namespace quarn {

Known knownIn(const Snapshot& snapshot, const sysinfo::SystemRoot& root) {
    const SCMem& mem = snapshot.mem;
    const SCNet& net = snapshot.net;
    // A capture stands still: over it nothing has a rate. CPU time passes wherever a kernel runs.
    const bool alive = root.isHost() || snapshot.cpu.total > 0;
    Known known;
    known.rates = alive && snapshot.generation > 1;
    known.processRates = alive && snapshot.processGeneration > 1;
    known.cpu = known.rates && !snapshot.cpu.perCore.empty();
    known.memory = mem.total > 0;
    known.memoryParts = known.memory && mem.used + mem.freeBytes > 0;
    known.uptime = snapshot.uptime > 0;
    known.network = root.isHost() || net.rxBytes + net.txBytes > 0;
    known.disk = snapshot.disk.diskCount > 0;
    known.capabilities = sysinfo::platform::memoryCapabilities();
    return known;
}

} // namespace quarn
