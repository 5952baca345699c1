#include "history/MetricsSample.h"

namespace quarn {

MetricsSample::MetricsSample(const Snapshot& snapshot)
    : time(snapshot.timestamp),
      cpuPercent(snapshot.cpu.total),
      memoryUsed(snapshot.mem.total == 0 ? 0 : snapshot.mem.used),
      swapUsed(snapshot.mem.swapUsed),
      diskRead(snapshot.disk.readBytes),
      diskWrite(snapshot.disk.writeBytes),
      networkIn(snapshot.net.rxBytes),
      networkOut(snapshot.net.txBytes) {
    if (snapshot.power.sysWatts > 0) watts = snapshot.power.sysWatts;
}

} // namespace quarn
