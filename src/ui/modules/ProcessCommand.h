#pragma once

#include "core/platform.h"
#include "monitor/Snapshot.h"

#include <csignal>
#include <optional>
#include <span>
#include <string>

namespace quarn {

/// Something a person may do to a process: a signal, or a priority.
struct ProcessCommand {
    enum class Confirm { no, yes };

    const char* title;    ///< of the menu entry
    const char* meaning;  ///< tooltip
    const char* question; ///< "Force {} to quit?"; {} is the process
    const char* failed;   ///< "{} could not be paused"
    int signal = 0;       ///< 0: `nice` is set
    int nice = 0;
    Confirm confirm = Confirm::no;
};

/// The commands of everyday: ask to quit, force to quit, pause, continue.
std::span<const ProcessCommand> commonCommands();
const ProcessCommand& askToQuit();
const ProcessCommand& forceToQuit();
/// Other signals.
std::span<const ProcessCommand> otherSignals();
/// From the highest to the lowest.
std::span<const ProcessCommand> priorities();

/// "firefox (1204)", or "3 processes".
std::string commandTarget(std::span<const ProcInfo> processes);
/// The question before a command, and below it what it entails.
std::string commandQuestion(const ProcessCommand& command, std::span<const ProcInfo> processes);

/// Carries out a command on one process; reads its state, so not on a thread that must not wait. `bootTime`
/// is that by which the starts of processes are reckoned.
sysinfo::platform::ProcessAnswer carryOut(const ProcessCommand& command, const ProcInfo& process,
                                          const sysinfo::SystemRoot& root, uint64_t bootTime);
/// What to tell a person of an answer; empty when it was done.
std::string answerSentence(const ProcessCommand& command, const ProcInfo& process,
                           sysinfo::platform::ProcessAnswer answer);

} // namespace quarn
