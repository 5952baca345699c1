#include "desktop/pages/Pages.h"

namespace quarn::desktop {

const std::vector<PageEntry>& pageTable() {
    static const std::vector<PageEntry> table{
        {"overview", "Overview", "overview", "", makeOverviewPage},
        {"processes", "Processes", "processes", "", makeProcessesPage},
        {"applications", "Applications", "applications", "", makeApplicationsPage},
        {"history", "History", "history", "", makeHistoryPage},
        {"cpu", "CPU", "cpu", "Hardware", makeCpuPage},
        {"memory", "Memory", "memory", "Hardware", makeMemoryPage},
        {"gpu", "GPU", "gpu", "Hardware", makeGpuPage},
        {"disks", "Disks", "disks", "Hardware", makeDisksPage},
        {"sensors", "Sensors", "sensors", "Hardware", makeSensorsPage},
        {"power", "Power and battery", "power", "Hardware", makePowerPage},
        {"network", "Network", "network", "Network", makeNetworkPage},
        {"connections", "Connections", "connections", "Network", makeConnectionsPage},
        {"system", "System", "system", "Quarn", makeSystemPage},
        {"settings", "Settings", "settings", "Quarn", makeSettingsPage},
    };
    return table;
}

} // namespace quarn::desktop
