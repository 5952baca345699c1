#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"
#include "ui/modules/WidgetKind.h"

#include <array>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace quarn {

struct HistorySample;

/// What live graphs show over time.
enum class LiveSeries {
    cpuTotal,    ///< percent of the machine
    cpuSystem,   ///< percent
    memoryUsed,  ///< percent of what is built in
    swapUsed,    ///< bytes
    gpu,         ///< percent
    temperature, ///< °C, the representative one
    networkIn,   ///< bytes per second, as the next three
    networkOut,
    diskRead,
    diskWrite,
    power, ///< watts of the whole machine
    load,  ///< of one minute
    count
};

/// The series whose sum is the graph of a kind.
std::span<const LiveSeries> seriesOf(WidgetKind kind);

/// The readings of the last half hour and a little more, one point a tick. Belongs to the main thread.
class LiveHistory {
public:
    static constexpr double longestSpan = 1800; ///< seconds

    /// Takes the readings of `snapshot` at `now` (steady seconds); what is unknown becomes NaN. A pause of
    /// more than two and a half times `tick` leaves a point of NaN, so that lines have a gap there.
    void add(const Snapshot& snapshot, const Known& known, double now, double tick);

    /// One moment on the clocks of samples and of graphs.
    struct Moment {
        WallTime wall{};
        double steady = 0; ///< seconds
    };
    /// Puts samples of an earlier run before the points there are: those of the last half hour, with a gap of
    /// NaN at each of `breaks` (seconds since the epoch). `memoryTotal` is what is built in, in bytes; 0 when
    /// not known.
    void restore(std::span<const std::shared_ptr<const HistorySample>> samples,
                 std::span<const std::pair<double, double>> breaks, uint64_t memoryTotal, Moment now);

    /// Steady seconds, ascending, one for each value of every series.
    std::span<const double> times() const;
    std::span<const double> values(LiveSeries series) const;
    bool empty() const { return times().empty(); }

    /// The largest value in each of `count` equal slices of the last `span` seconds, oldest first; NaN for a
    /// slice without a reading. Slices lie on a fixed grid, so that columns move only when a slice ends.
    std::vector<double> peaks(LiveSeries series, double span, size_t count) const;
    /// The same of the sum of several series.
    std::vector<double> peaks(std::span<const LiveSeries> summands, double span, size_t count) const;
    /// How many slices of `span` a graph should have, at most `most`: each long enough to hold a tick
    /// wherever it falls, so that the graph has no gaps of its own making.
    size_t slicesWithin(double span, size_t most) const;
    /// The sum of several series at the point `index`; NaN where one of them is unknown.
    double sum(std::span<const LiveSeries> summands, size_t index) const;

private:
    using Values = std::array<double, static_cast<size_t>(LiveSeries::count)>;
    void push(double time, const Values& values);
    void append(double time, const Values& values);

    double tick_ = 0; ///< the newest
    std::vector<double> times_;
    std::array<std::vector<double>, static_cast<size_t>(LiveSeries::count)> values_;
};

} // namespace quarn
