#pragma once

#include "history/AppLiveHistory.h"
#include "history/HistorySample.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quarn {

/// The live history as columns of numbers, which is how the archive keeps it.
///
/// A column has one number for each sample; an absent reading is NaN. A list that each sample has is
/// flattened: the column "<name>.count" tells how many of the values belong to each sample. The fields of a
/// list of records have a column each, "<name>.<field>"; names in them are places in a list of texts.
struct ArchiveColumns {
    using Column = std::vector<double>;

    std::map<std::string, Column, std::less<>> columns;
    size_t count = 0;                    ///< of samples
    std::vector<std::string> deviceKeys; ///< names of disks and interfaces
    std::vector<std::string> topNames;   ///< names of processes
    size_t appSamples = 0;               ///< what one application did in one minute
    std::vector<std::string> appKeys;
    std::vector<std::string> appNames; ///< for people, as many as keys; empty where not known

    /// Columns that do not fit together, or hold what no history does.
    struct Unreadable {};

    void setSamples(std::span<const SharedSample> samples);
    /// Readings whose column is missing are not known. Throws Unreadable.
    std::vector<SharedSample> samples() const;

    void setApps(const AppLiveHistory& apps);
    AppLiveHistory apps() const; ///< throws Unreadable
};

} // namespace quarn
