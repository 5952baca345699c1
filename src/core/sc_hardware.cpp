#include "core/Battery.h"
#include "core/HardwareInfo.h"
#include "core/sc.h"

using sysinfo::SystemRoot;

SCBattery sc_read_battery() { return sysinfo::flatBattery(sysinfo::readBattery(SystemRoot::host())); }

SCHardware sc_read_hardware() { return sysinfo::flatHardware(sysinfo::readHardwareInfo(SystemRoot::host())); }
