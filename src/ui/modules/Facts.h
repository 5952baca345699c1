#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"
#include "ui/modules/ReadingStyle.h"

#include <string>
#include <vector>

/// What is known of one thing, for lists of names with what they say. Texts may come from strangers.
namespace quarn {

struct Fact {
    std::string name;
    std::string value; ///< empty when it is not known
    std::string
        reason; ///< why it is not known, as part of a sentence: "the driver does not tell"; may be empty

    bool operator==(const Fact&) const = default;
};

struct FactGroup {
    std::string title;
    std::vector<Fact> facts;
};

/// The machine, its processor, graphics and system.
std::vector<FactGroup> hardwareFacts(const Hardware& hardware);
/// The link, its addresses and what it carried. `ratesKnown`: its rates are readings.
enum class RatesKnown { no, yes };
std::vector<FactGroup> interfaceFacts(const NetInterface& link, RatesKnown ratesKnown,
                                      const ReadingStyle& style);
/// All disks together: what they do now, and what they did since the machine started.
std::vector<FactGroup> diskFacts(const SCDisk& disk, const Known& known);
/// What draws how much, and where that is known from. `reason`: why there is no power by part.
std::vector<FactGroup> powerFacts(const Snapshot& snapshot, const std::string& reason);
/// A battery that is present: its charge, then its condition.
std::vector<FactGroup> batteryFacts(const Battery& battery, const ReadingStyle& style);
/// "discharging, 7 h 18 min left".
std::string batteryState(const Battery& battery);
/// "4031 of 4400 mAh (92 %)": what it holds when full, of what it was made for.
std::string batteryCapacity(const Battery& battery);
/// All groups as text, for the clipboard: their titles, and under each "  Model: …".
std::vector<std::string> plainLines(const std::vector<FactGroup>& groups);

} // namespace quarn
