#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <string>
#include <string_view>

namespace quarn {

/// What lists of processes show and are sorted by.
enum class ProcessField : uint8_t {
    name,
    pid,
    user,
    cpu, ///< percent of one core
    memory,
    diskRead, ///< bytes per second, as the next
    diskWritten,
    cpuTime,
    threads,
    switches, ///< context switches per second
    state,
    started,
    parent, ///< pid
    path,
};
inline constexpr size_t processFieldCount = static_cast<size_t>(ProcessField::path) + 1;

/// Whether the field is a text; otherwise it is a number.
bool isText(ProcessField field);
/// A number of a process, NaN when it is not known or the field is a text.
double processNumber(const ProcInfo& process, ProcessField field, const Known& known);
/// A text of a process as it came, empty when it is not known or the field is a number.
std::string_view processText(const ProcInfo& process, ProcessField field);
/// A field for people, "—" when it is not known. `now` decides whether a start is told by time or by date.
std::string shownField(const ProcInfo& process, ProcessField field, const Known& known, WallTime now);
/// Why a field of this process is not known, for people; empty when it is.
std::string_view whyUnknown(const ProcInfo& process, ProcessField field, const Known& known);

} // namespace quarn
