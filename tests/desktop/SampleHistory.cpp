#include "desktop/SampleMachine.h"

#include "history/HistoryTime.h"
#include "history/MetricsStore.h"

#include <array>
#include <cmath>

namespace quarn::testing {
namespace {

constexpr int64_t day = 86'400;
constexpr double gib = 1ull << 30;
constexpr int64_t workdays = 1; ///< so that the pictures show a week of work

struct Program {
    const char *key, *name;
    double cpu;     ///< seconds of a core in a busy hour
    double memory;  ///< GiB
    double disk;    ///< MB in a busy hour
    double network; ///< MB in a busy hour; nobody counts it for most
};
constexpr std::array programs{
    Program{"/usr/share/applications/firefox-esr.desktop", "Firefox ESR", 900, 1.9, 240, 310},
    Program{"cc1plus", "cc1plus", 1400, 0.9, 900, 0},
    Program{"/usr/share/applications/code.desktop", "Visual Studio Code", 620, 1.2, 130, 24},
    Program{"/usr/share/applications/thunderbird.desktop", "Thunderbird", 90, 0.42, 36, 62},
    Program{"/usr/lib/systemd/user/org.gnome.Shell@wayland.service", "org.gnome.Shell", 260, 0.5, 4, 0},
    Program{"/usr/lib/systemd/system/postgresql.service", "postgresql", 130, 0.3, 410, 0},
    Program{"kernel", "Kernel", 75, 0.01, 0, 0},
    Program{"/usr/share/applications/org.gnome.Terminal.desktop", "Terminal", 48, 0.08, 1, 0},
    Program{"/usr/lib/systemd/user/tracker-miner-fs-3.service", "tracker-miner-fs-3", 40, 0.05, 120, 0},
    Program{"/usr/lib/systemd/system/containerd.service", "containerd", 31, 0.06, 22, 8},
    Program{"/usr/share/applications/org.gnome.Nautilus.desktop", "Files", 12, 0.12, 30, 0},
    Program{"bash", "bash", 6, 0.01, 2, 0},
};

/// Between 0 and 1, the same for the same seed.
double noise(int64_t seed) {
    const double wild = std::sin(static_cast<double>(seed % 100'003) * 12.9898) * 43758.5453;
    return wild - std::floor(wild);
}

/// How busy the machine is, 0 to 1; negative while it is switched off.
double load(int64_t time) {
    const int64_t hour = time / hourSeconds % 24, date = time / day;
    if (noise(date) < 0.06 || hour < 5) return -1; // a day off, and nights
    const bool isWork = (date + workdays) % 7 < 5 && hour >= 7 && hour < 19;
    const double season = 0.8 + 0.2 * std::sin(static_cast<double>(date) / 40);
    return (isWork ? 0.25 + 0.55 * noise(time / hourSeconds) : 0.04 + 0.1 * noise(time / hourSeconds)) *
           season;
}

SystemMetrics machine(int64_t time, double seconds) {
    const double busy = load(time) * (0.7 + 0.6 * noise(time / minuteSeconds));
    const double burst = noise(time / (10 * minuteSeconds) + 7) > 0.8 ? busy : 0;
    const double bytes = seconds * busy;
    return {.seconds = seconds,
            .cpuSeconds = seconds * std::min(1.0, 0.5 * busy + 0.4 * burst),
            .peakCPUPercent = std::min(100.0, 100 * (0.9 * busy + 0.5 * burst)),
            .memoryByteSeconds = seconds * gib * (4 + 5 * busy),
            .peakMemoryBytes = static_cast<int64_t>(gib * (4.3 + 6 * busy)),
            .diskReadBytes = static_cast<int64_t>(bytes * 900e3 * (1 + 9 * burst)),
            .diskWriteBytes = static_cast<int64_t>(bytes * 500e3 * (1 + 4 * burst)),
            .networkInBytes = static_cast<int64_t>(bytes * 350e3 * (0.4 + 3 * burst)),
            .networkOutBytes = static_cast<int64_t>(bytes * 60e3),
            .energyJoules = seconds * (6 + 20 * busy),
            .powerSeconds = seconds};
}

AppMetrics use(const Program& program, int64_t hour, double seconds) {
    const double share = seconds / static_cast<double>(hourSeconds) * load(hour) *
                         (0.5 + noise(hour / hourSeconds + static_cast<int64_t>(program.cpu)));
    const double disk = program.disk * 1e6 * share, network = program.network * 1e6 * share;
    const double cpuSeconds = program.cpu * share;
    return {.name = program.name,
            .seconds = seconds,
            .cpuSeconds = cpuSeconds,
            .memoryByteSeconds = seconds * program.memory * gib * (0.8 + 0.3 * share),
            .peakMemoryBytes = static_cast<int64_t>(program.memory * gib * 1.3),
            .diskReadBytes = static_cast<int64_t>(0.7 * disk),
            .diskWriteBytes = static_cast<int64_t>(0.3 * disk),
            .energyImpact = cpuSeconds * 1.2,
            .networkInBytes = static_cast<int64_t>(0.9 * network),
            .networkOutBytes = static_cast<int64_t>(0.1 * network)};
}

} // namespace

void writeSampleHistory(const std::filesystem::path& file, WallTime now) {
    MetricsStore store(file);
    const int64_t end = unixSeconds(now);
    const int64_t minutesFrom = roundedDown(end - 7 * day, hourSeconds);
    MetricsBatch batch;
    for (int64_t hour = minutesFrom - 720 * day; hour < end; hour += hourSeconds) {
        if (load(hour) < 0) continue;
        // What is long ago is only read by hours and days.
        const bool isFine = hour >= minutesFrom;
        const int64_t step = isFine ? minuteSeconds : hourSeconds;
        for (int64_t time = hour; time < std::min(hour + hourSeconds, end); time += step)
            batch.system.emplace(time, machine(time, static_cast<double>(step)));
        const auto seconds = static_cast<double>(std::min(hourSeconds, end - hour));
        for (const Program& program : programs)
            batch.apps[hour].emplace(program.key, use(program, hour, seconds));
    }
    store.write(batch);
    store.maintain(now);
}

} // namespace quarn::testing
