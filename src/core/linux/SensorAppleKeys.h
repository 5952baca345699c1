#pragma once

#include "core/linux/SensorChip.h"

#include <memory>

namespace sysinfo::platform {

/// The controller's own keys through the key files of the Apple SMC driver: choose an index by writing it,
/// then read name, type, length and data. Null where these files are missing or may not be written (they
/// belong to root); the driver's hwmon folder serves then.
///
/// The chosen index is shared by everyone who uses the files, so each answer is taken only when the name
/// still fits after the data was read.
std::shared_ptr<SensorChip> openAppleKeys(const SystemRoot& root, const SensorIo& io);

} // namespace sysinfo::platform
