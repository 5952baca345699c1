#pragma once

namespace quarn {

class Monitor;

enum class PowerSplit { unwanted, wanted };

/// A client's wish for the sensors of a Monitor, for as long as this object lives.
class SensorRetention {
public:
    explicit SensorRetention(Monitor& target, PowerSplit powerSplit = PowerSplit::unwanted);
    ~SensorRetention() { release(); }
    SensorRetention(const SensorRetention&) = delete;
    SensorRetention& operator=(const SensorRetention&) = delete;

    bool isActive() const { return isActive_; }
    void release(); ///< once; the destructor otherwise does it

private:
    Monitor& target_;
    PowerSplit powerSplit_;
    bool isActive_ = true;
};

} // namespace quarn
