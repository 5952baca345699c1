#pragma once

#include "cli/ProcessOrder.h"
#include "cli/TerminalText.h"

#include <string>

namespace quarn::cli {

/// One snapshot as text for people, without escape sequences: state, meters, the busiest processes.
std::string plainSnapshot(const Snapshot& snapshot, const Known& known, const std::string& host,
                          Charset charset);

/// A list of processes as text, in that order.
std::string plainProcesses(const Snapshot& snapshot, const Known& known, ProcessOrder order, size_t limit,
                           Charset charset);

/// What the machine under `root` is called: its host name, for a captured one the name of its folder.
std::string machineName(const sysinfo::SystemRoot& root);

} // namespace quarn::cli
