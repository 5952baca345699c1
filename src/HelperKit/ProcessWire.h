#pragma once

#include "HelperKit/Data.h"
#include "HelperKit/WireRecords.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace quarn {

/// One process instance: a pid is used again, a pid with its start time is not.
struct ProcessKey {
    int32_t pid = 0;
    uint64_t startTimeMicros = 0;

    bool operator==(const ProcessKey&) const = default;

    struct Hash {
        size_t operator()(const ProcessKey& key) const {
            const uint64_t pid = static_cast<uint32_t>(key.pid);
            return static_cast<size_t>((key.startTimeMicros ^ pid << 40) * 0x9E3779B97F4A7C15U >> 16);
        }
    };
};

/// The process list in a compact binary form, as the helper sends it every tick. Integers are little-endian.
///
///     "QRP", revision (1 byte), total threads (8), number of records (4), then the records:
///     pid, ppid, uid, threads (4 each)
///     accessible, path follows, energy known (1 each, 0 or 1; the last in revision 2 only)
///     CPU percent (the bits of a double), memory, CPU time, start time in s, start time in µs (0: unknown),
///     bytes read, bytes written, context switches, energy in nJ (8 each; the last in revision 2 only)
///     name, user, state and, if it follows, the path (each a 4-byte length and UTF-8)
///
/// Paths are long and hardly change, so each is sent once per process instance: the two ends of a connection
/// remember them in a `Paths` each, empty at first and thrown away with the connection. The maps keep what
/// has ended, too; an owner whose map has become many times longer than its lists makes a new connection.
namespace ProcessWire {

enum class Revision : uint8_t {
    withoutEnergy = 1, ///< still read
    current = 2,
};

using Paths = std::unordered_map<ProcessKey, std::string, ProcessKey::Hash>;

/// `sent` holds the paths that went over this connection before and is brought up to date. Numbers out of the
/// range of their field take its nearest end. A process without a start time in µs always carries its path.
Data encode(const HelperProcessList& list, Paths& sent, Revision revision = Revision::current);

/// The list, or nothing when `data` is not exactly one well-formed message or leaves out a path that `known`
/// lacks; `known` is brought up to date on success and else left alone.
std::optional<HelperProcessList> decode(DataView data, Paths& known);

} // namespace ProcessWire

} // namespace quarn
