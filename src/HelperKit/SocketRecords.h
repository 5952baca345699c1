#pragma once

#include "HelperKit/WireRecords.h"
#include "core/sc.h"

namespace quarn {

/// The record that travels for a socket of the sampling core, and back. What does not fit the flat record's
/// fields is cut or clamped.
SocketRecord toRecord(const SCSocket& socket);
SCSocket toSocket(const SocketRecord& record);

} // namespace quarn
