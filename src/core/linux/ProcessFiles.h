#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sysinfo::platform {

/// The path of a file in the folder that the kernel keeps for a process.
std::string processFile(const SystemRoot& root, int64_t pid, std::string_view name);

/// What is used of proc/<pid>/stat. `comm` points into the parsed text.
struct ProcessStat {
    std::string_view comm; ///< raw bytes: may hold blanks, brackets and line feeds
    char state = '?';
    int32_t ppid = 0;
    int32_t terminal = 0; ///< device number of the controlling terminal, 0 without one
    uint32_t flags = 0;   ///< the kernel's PF_… bits
    int nice = 0;
    uint64_t cpuTicks = 0; ///< user + system
    uint32_t threads = 0;
    uint64_t startTicks = 0; ///< since boot
};
/// nullopt for text that is cut or is something else.
std::optional<ProcessStat> parseProcessStat(std::string_view text);

/// What is used of proc/<pid>/status; sizes in bytes.
struct ProcessStatus {
    uint32_t effectiveUid = 0;
    bool uidKnown = false;
    uint64_t resident = 0;
    std::optional<uint64_t> anonymous; ///< resident anonymous memory; kernels before 4.5 do not tell
    uint64_t swapped = 0;
    uint64_t contextSwitches = 0; ///< voluntary + involuntary, of the main thread
};
ProcessStatus parseProcessStatus(std::string_view text);

/// What is used of proc/<pid>/io: bytes that reached storage.
struct ProcessIo {
    uint64_t readBytes = 0;
    uint64_t writeBytes = 0;
};
/// nullopt when a line is missing.
std::optional<ProcessIo> parseProcessIo(std::string_view text);

/// proc/<pid>/cmdline: texts that each end in a NUL. A program that wrote its title over them leaves one text
/// and a tail of NULs.
std::vector<std::string> parseCommandLine(std::string_view text);

/// The start of a process in microseconds since the epoch.
uint64_t startMicros(uint64_t bootSeconds, uint64_t startTicks);

} // namespace sysinfo::platform
