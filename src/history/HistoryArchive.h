#pragma once

#include "HelperKit/Data.h"
#include "history/AppLiveHistory.h"
#include "history/HistorySample.h"

#include <variant>

namespace quarn {

/// The live history as a file that outlasts the program: a binary property list, a dictionary of
///
///     version     1
///     count       how many samples there are
///     columns     dictionary of arrays of reals, see ArchiveColumns
///     breaks      array of pairs of reals: the spans without samples, seconds since the epoch
///     deviceKeys  array of texts, the disks and interfaces that columns point at
///     topNames    array of texts, the processes that columns point at
///     appKeys     array of texts: the applications, and
///     appNames    their names for people, empty where not known
///     appSamples  how many values the columns of applications have
///
/// Everything but the first three may be missing. Reads and writes no file.
namespace HistoryArchive {

/// Other versions are not read.
inline constexpr int64_t version = 1;

/// Longer files are not read.
inline constexpr size_t mostBytes = size_t{64} << 20;

struct Content {
    std::vector<SharedSample> samples; ///< oldest first; `restored` once they are decoded
    std::vector<HistoryBreak> breaks;
    AppLiveHistory apps;
};

enum class Error {
    unreadable, ///< no such archive, damaged, or of another version
};

Data encode(std::span<const SharedSample> samples, std::span<const HistoryBreak> breaks,
            const AppLiveHistory& apps);
/// Takes any bytes; memory and time are bounded by their number.
std::variant<Content, Error> decode(DataView data);

} // namespace HistoryArchive

} // namespace quarn
