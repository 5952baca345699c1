#pragma once

#include "HelperKit/Data.h"
#include "HelperKit/WireRecords.h"

#include <optional>

namespace quarn {

/// Records as JSON documents: an object whose keys are the names of the record's fields. `Record` is
/// HelperProcess, HelperProcessList, SocketRecord, a vector of SocketRecord, HelperPower, VersionInfo or
/// CommandResult.
namespace XPCPayload {

/// An absent field is left out. Ill-formed UTF-8 becomes U+FFFD. JSON has no number that is not finite: such
/// a one is written as null, which reads as absent where that is allowed and makes the document undecodable
/// where it is not.
template <class Record>
Data encode(const Record& record);

/// Absent when `data` is not one JSON document of that record: truncated, not UTF-8, a required field
/// missing, a value of the wrong type or out of range. Keys that the record does not have are ignored. Never
/// throws.
template <class Record>
std::optional<Record> decode(DataView data);

} // namespace XPCPayload

} // namespace quarn
