#include "ui/modules/ProcessCommand.h"

#include "core/CleanText.h"

#include <array>
#include <fmt/format.h>

namespace quarn {

namespace {

using sysinfo::platform::ProcessAnswer;
using Confirm = ProcessCommand::Confirm;

constexpr std::array<ProcessCommand, 4> common{{
    {"Ask to quit", "The program may save its work first (SIGTERM)", "Ask {} to quit?",
     "{} could not be asked to quit", SIGTERM},
    {"Force to quit …", "Ends it at once; what is not saved is lost (SIGKILL)", "Force {} to quit?",
     "{} could not be ended", SIGKILL, 0, Confirm::yes},
    {"Pause", "It stands still until it is continued (SIGSTOP)", "Pause {}?", "{} could not be paused",
     SIGSTOP},
    {"Continue", "Lets a paused process go on (SIGCONT)", "Continue {}?", "{} could not be continued",
     SIGCONT},
}};

constexpr const char* notSent = "The signal could not be sent to {}";
constexpr std::array<ProcessCommand, 6> signals{{
    {"Hang up (SIGHUP)", "Services mostly read their settings anew", "Send SIGHUP to {}?", notSent, SIGHUP},
    {"Interrupt (SIGINT)", "As Ctrl+C in a terminal", "Send SIGINT to {}?", notSent, SIGINT},
    {"Quit with a core dump (SIGQUIT)", "As Ctrl+\\ in a terminal", "Send SIGQUIT to {}?", notSent, SIGQUIT,
     0, Confirm::yes},
    {"Abort (SIGABRT)", "Ends it as after an error of its own", "Send SIGABRT to {}?", notSent, SIGABRT, 0,
     Confirm::yes},
    {"User signal 1 (SIGUSR1)", "What it does is up to the program; many end", "Send SIGUSR1 to {}?", notSent,
     SIGUSR1, 0, Confirm::yes},
    {"User signal 2 (SIGUSR2)", "What it does is up to the program; many end", "Send SIGUSR2 to {}?", notSent,
     SIGUSR2, 0, Confirm::yes},
}};

constexpr const char* notSet = "The priority of {} could not be changed";
constexpr std::array<ProcessCommand, 6> priorityTable{{
    {"Very high (nice −15)", "", "", notSet, 0, -15},
    {"High (nice −5)", "", "", notSet, 0, -5},
    {"Normal (nice 0)", "", "", notSet, 0, 0},
    {"Low (nice 5)", "", "", notSet, 0, 5},
    {"Very low (nice 10)", "", "", notSet, 0, 10},
    {"Only when idle (nice 19)", "", "", notSet, 0, 19},
}};

std::string filled(const char* text, std::string_view target) {
    return fmt::format(fmt::runtime(text), target);
}

std::string nameOf(const ProcInfo& process) {
    return fmt::format("{} ({})", scutil::cleanText(process.name), process.pid);
}

} // namespace

std::span<const ProcessCommand> commonCommands() { return common; }
const ProcessCommand& askToQuit() { return common[0]; }
const ProcessCommand& forceToQuit() { return common[1]; }
std::span<const ProcessCommand> otherSignals() { return signals; }
std::span<const ProcessCommand> priorities() { return priorityTable; }

std::string commandTarget(std::span<const ProcInfo> processes) {
    return processes.size() == 1 ? nameOf(processes.front()) : fmt::format("{} processes", processes.size());
}

std::string commandQuestion(const ProcessCommand& command, std::span<const ProcInfo> processes) {
    std::string text = filled(command.question, commandTarget(processes));
    if (processes.size() > 1) {
        constexpr size_t mostNamed = 8;
        text += "\n";
        for (size_t i = 0; i < processes.size() && i < mostNamed; ++i) text += "\n" + nameOf(processes[i]);
        if (processes.size() > mostNamed) text += fmt::format("\nand {} more", processes.size() - mostNamed);
    }
    if (command.signal == SIGKILL) text += "\n\nWhat is not saved is lost.";
    return text;
}

ProcessAnswer carryOut(const ProcessCommand& command, const ProcInfo& process,
                       const sysinfo::SystemRoot& root, uint64_t bootTime) {
    // Without its start nobody can tell whether it is still the same process.
    if (!process.startTimeMicros) return ProcessAnswer::denied;
    const sysinfo::platform::ProcessInstance instance{static_cast<int32_t>(process.pid),
                                                      *process.startTimeMicros, bootTime};
    return command.signal != 0 ? sysinfo::platform::signalProcess(root, instance, command.signal)
                               : sysinfo::platform::setProcessPriority(root, instance, command.nice);
}

std::string answerSentence(const ProcessCommand& command, const ProcInfo& process, ProcessAnswer answer) {
    const std::string failed = filled(command.failed, nameOf(process));
    switch (answer) {
    case ProcessAnswer::done: return {};
    case ProcessAnswer::gone:
        return fmt::format("{} has ended in the meantime. Nothing was done.", nameOf(process));
    case ProcessAnswer::denied:
        if (command.signal == 0)
            return failed +
                   ": only the administrator may raise a priority, or change that of another user's process.";
        return fmt::format("{}: it belongs to {}, and only {} or the administrator may do that.", failed,
                           process.user.view(), process.user.view());
    case ProcessAnswer::failed: return failed + ": the system refused it.";
    }
    return {};
}

} // namespace quarn
