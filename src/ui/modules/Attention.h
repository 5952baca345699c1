#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"
#include "ui/modules/WidgetKind.h"

#include <span>
#include <string>
#include <vector>

namespace quarn {

class Prefs;

enum class AttentionLevel { note, warning, critical };

/// Something about the machine that is worth saying.
struct AttentionItem {
    AttentionLevel level;
    std::string text;   ///< "/home is nearly full"
    std::string detail; ///< "3.21 GB of 512 GB free"
    std::string page;   ///< the id of the page that shows more
    std::string search; ///< what to search for there
    bool operator==(const AttentionItem&) const = default;
};

/// From where on things are worth saying; the thresholds of alerts.
struct AttentionLimits {
    double celsius = 95;
    double freeSpacePercent = 10;
    double batteryPercent = 15;
    double swapBytes = 8e9;
};
AttentionLimits attentionLimits(const Prefs& prefs);

/// What would be said of this machine: "A note appears here when memory is short, …".
std::string watchedText(const Snapshot& snapshot, const AttentionLimits& limits, const ReadingStyle& style);

/// Looks for what needs attention, snapshot after snapshot. Belongs to one thread.
class Attention {
public:
    /// What is worth saying at `now` (steady seconds), the gravest first. `volumes` may be some seconds old.
    std::vector<AttentionItem> look(const Snapshot& snapshot, const Known& known,
                                    std::span<const Volume> volumes, const AttentionLimits& limits,
                                    const ReadingStyle& style, double now);

private:
    void lookAtZombies(const Snapshot& snapshot, double now, std::vector<AttentionItem>& items);

    struct Zombie {
        int64_t pid;
        std::optional<uint64_t> start;
        double since;
    };
    std::vector<Zombie> zombies_; ///< ascending by pid
};

} // namespace quarn
