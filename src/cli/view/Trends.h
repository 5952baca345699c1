#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <cstddef>
#include <deque>

namespace quarn::cli {

/// The last values of one reading, for a mini graph.
class Trend {
public:
    void add(double value) {
        values_.push_back(value);
        if (values_.size() > capacity) values_.pop_front();
    }
    const std::deque<double>& values() const { return values_; } ///< oldest first

private:
    static constexpr size_t capacity = 600;
    std::deque<double> values_;
};

/// What the live view remembers of the snapshots before.
struct Trends {
    Trend cpu;     ///< percent of all cores
    Trend network; ///< received and sent, bytes per second
    Trend disk;    ///< read and written

    void add(const Snapshot& snapshot, const Known& known) {
        if (known.cpu) cpu.add(snapshot.cpu.total);
        if (!known.rates) return;
        network.add(snapshot.net.rxRate + snapshot.net.txRate);
        disk.add(snapshot.disk.readRate + snapshot.disk.writeRate);
    }
};

} // namespace quarn::cli
