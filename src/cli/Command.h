#pragma once

#include "cli/ConnectionsCommand.h"
#include "cli/ProcessOrder.h"
#include "core/SystemRoot.h"
#include "history/HistoryReads.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarn::cli {

/// What a command was told; options that it does not take keep these defaults.
struct Options {
    sysinfo::SystemRoot root = sysinfo::SystemRoot::host();
    enum class Form { text, json } form = Form::text;
    double interval = 1;  ///< seconds between two samples
    uint64_t count = 0;   ///< documents, 0 for no end
    uint64_t seconds = 0; ///< how long, 0 for no end
    ProcessOrder order = ProcessOrder::cpu;
    uint64_t limit = UINT64_MAX; ///< rows
    ConnectionsOptions connections;
    std::optional<HistorySpan> span;
    std::optional<AppHistoryMetric> metric;
    enum class Confirmation { asked, given } confirmation = Confirmation::asked;
    std::vector<std::string> words; ///< what stands between the options; all that follows, for takesWords
};

/// The options that a command takes, added up.
enum Takes : unsigned {
    takesNothing = 0,
    takesJson = 1,
    takesInterval = 2,
    takesCount = 4,
    takesSort = 8,
    takesLimit = 16,
    takesWords = 32, ///< the command reads all further arguments itself
    takesProtocol = 64,
    takesScope = 128,
    takesSearch = 256,
    takesGrouping = 512,
    takesArguments = 1024, ///< words between the options
    takesSpan = 2048,
    takesMetric = 4096,
    takesConfirmation = 8192,
    takesSeconds = 16384,
};

/// One option as the help shows it.
struct OptionRow {
    Takes option;
    std::string_view name;     ///< "--interval"
    std::string_view argument; ///< "SECONDS"; empty for a flag
    std::string_view help;
};
/// Every option of the commands, in the order of the help.
std::span<const OptionRow> optionRows();

/// One row of the program's table of commands.
struct Command {
    std::string_view name;
    std::string_view arguments; ///< what may follow the name, for the help
    std::string_view summary;   ///< one line of the program's help
    std::string_view details;   ///< further sentences of the command's own help
    std::string_view example;
    unsigned takes;
    /// Answers the exit status. Throws OutputClosed, or an exception whose message says what failed.
    int (*run)(const Options&);
};

/// Every command, in the order of the help. A new one is a row in Commands.cpp and a file in commands/.
std::span<const Command> commands();

/// `quarn` without a command.
int runLive(const Options& options);

int runSnapshot(const Options& options);
int runStream(const Options& options);
int runProcesses(const Options& options);
int runDisks(const Options& options);
int runVolumes(const Options& options);
int runInterfaces(const Options& options);
int runConnectionsCommand(const Options& options);
int runSensors(const Options& options);
int runPower(const Options& options);
int runBattery(const Options& options);
int runGpu(const Options& options);
int runHardware(const Options& options);
int runHistory(const Options& options);
int runRecord(const Options& options);
int runRecorder(const Options& options);
int runSettingsCommand(const Options& options);

} // namespace quarn::cli
