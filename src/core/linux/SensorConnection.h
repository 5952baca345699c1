#pragma once

#include "core/SMCConnection.h"
#include "core/linux/SensorLanes.h"
#include "core/linux/SensorSources.h"
#include "core/linux/SensorTable.h"

#include <memory>
#include <mutex>

namespace sysinfo::platform {

/// This machine's sensors, presented as a controller presents its keys, with "PSTR" for what the whole
/// machine draws and "PDTR" for what comes in from outside.
///
/// A sensor joins the keys with its first answer. So a graphics card that was asleep or a chip that was slow
/// when the keys were first enumerated is judged by a real reading when it wakes, and a disk or a dock that
/// is plugged in is appended: the class folders are looked over again every ten seconds, while somebody
/// reads. A key never moves and never changes its meaning; while its chip is away it does not answer.
class SensorConnection final : public SMCConnection {
public:
    SensorConnection(const SystemRoot& root, SensorIo io);

    bool call(const SMCParameters& in, SMCParameters& out) override;
    void prepare(std::span<const uint32_t> keys) override;
    std::optional<SensorDescription> describe(uint32_t key) override;
    std::vector<SensorDescription> sensors() override;
    /// Others that read meanwhile wait as well.
    void settle(std::chrono::milliseconds patience) override;

private:
    using Target = SensorTable::Target;

    bool readBytes(uint32_t key, SMCParameters& out);
    bool describeData(uint32_t key, SMCParameters& out);
    std::vector<Target> targetsOf(uint32_t key);
    uint32_t updatedKeyCount();
    void lookOverWhenDue();
    void refreshDue(std::span<const Target> targets);

    const std::shared_ptr<const SensorIo> io_;
    SensorTable table_;

    std::mutex sweepMutex_; ///< held while chips are looked for and read; guards what follows
    SensorSources sources_;
    SensorLanes lanes_;
    bool lookedOver_ = false;
    uint64_t lookedOverNs_ = 0;
};

} // namespace sysinfo::platform
