#pragma once

#include "core/IOReport.h"
#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"
#include "ui/modules/ReadingStyle.h"

#include <string>

/// The one sentence of state at the head of a page, in plain words and without a full stop.
namespace quarn {

/// "Receiving 1.20 MB/s and sending 34.0 kB/s, most of it on eth0".
std::string networkSentence(const Snapshot& snapshot, const Known& known, const ReadingStyle& style);
/// "Reading 14.0 MB/s and writing 5.00 MB/s; disks are busy 7 % of the time".
std::string diskSentence(const Snapshot& snapshot, const Known& known);
/// "The hottest part is the CPU at 54 °C; 2 fans turn at up to 1900 rpm".
std::string sensorSentence(const Snapshot& snapshot, const ReadingStyle& style);
/// "The machine draws 12.4 W; the battery holds 74 %, discharging, 5 h 12 min left".
std::string powerSentence(const Snapshot& snapshot);
/// "20XW: 8 cores and 15.6 GiB of memory, running for 3 d 4 h".
std::string machineSentence(const Hardware& hardware, const Snapshot& snapshot, const Known& known);
/// Why there is no power by domain; empty when there is some.
std::string powerReason(sysinfo::EnergyAccess access, const Snapshot& snapshot);

} // namespace quarn
