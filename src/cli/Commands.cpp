#include "cli/Command.h"

#include <array>

namespace quarn::cli {
namespace {

constexpr std::array<OptionRow, 13> options{{
    {takesJson, "--json", "", "print JSON"},
    {takesInterval, "--interval", "SECONDS", "between two samples; rates need both (default 1)"},
    {takesCount, "--count", "N", "end after N documents (default 0: never)"},
    {takesSort, "--sort", "ORDER", "cpu (default), memory, disk, pid or name"},
    {takesLimit, "--limit", "N", "print at most N"},
    {takesProtocol, "--proto", "PROTOCOL", "tcp, udp or all (default)"},
    {takesScope, "--scope", "SCOPE", "internet, listening, local or all (default)"},
    {takesSearch, "--search", "TEXT", "only what has TEXT in its name, address, port, state or PID"},
    {takesGrouping, "--by", "GROUP", "process (default) or destination"},
    {takesSpan, "--range", "RANGE", "hour, day (default), week, month, year or two-years"},
    {takesMetric, "--by", "KIND", "cpu (default), memory, disk, energy or network"},
    {takesSeconds, "--seconds", "N", "end after N seconds (default 0: never)"},
    {takesConfirmation, "--yes", "", "do not ask"},
}};

constexpr std::array<Command, 16> table{{
    {"snapshot", "[options]", "One complete sample of the machine.",
     "Takes two samples, --interval seconds apart, because rates and shares need both; with an interval of 0 "
     "one sample, without rates.\nThe JSON document has a key for every reading. What is not known, or may "
     "not be read, is null.",
     "quarn snapshot --json | jq .cpu.total", takesJson | takesInterval, runSnapshot},
    {"stream", "[options]", "One sample after the other, a JSON document a line.",
     "Each document has the keys of `quarn snapshot --json`. Without --count it goes on until it is stopped "
     "or nobody reads any more.",
     "quarn stream --json --count 60 --interval 1 > minute.jsonl", takesJson | takesCount | takesInterval,
     runStream},
    {"processes", "[options]", "The processes and what they use.",
     "CPU use is in percent of one core, over --interval seconds.",
     "quarn processes --sort memory --limit 10", takesJson | takesInterval | takesSort | takesLimit,
     runProcesses},
    {"disks", "[options]", "The physical disks and their traffic.", "", "quarn disks --json",
     takesJson | takesInterval, runDisks},
    {"volumes", "[options]", "The mounted volumes and their free space.", "", "quarn volumes", takesJson,
     runVolumes},
    {"interfaces", "[options]", "The network interfaces: addresses, media and traffic.",
     "The loopback is left out, and so is what has no address and never carried anything.",
     "quarn interfaces --json", takesJson | takesInterval, runInterfaces},
    {"connections", "[options]", "The network sockets and the processes that hold them.",
     "The scope is that of the other end: `internet`, `local` for private networks and this machine, or "
     "`listening` for sockets that wait for somebody. \"*\" is any address, \"—\" what a socket does not "
     "have or "
     "does not tell: the process of a socket that belongs to another user, to the system or to nobody any "
     "more.\n"
     "Only the network namespace of the caller is listed, not those of containers.",
     "quarn connections --scope listening --proto tcp",
     takesJson | takesProtocol | takesScope | takesSearch | takesGrouping, runConnectionsCommand},
    {"sensors", "[options]", "Temperatures, fans, voltages, currents and power.",
     "Sleeping devices are not woken: their sensors are listed with the reason. So is a rotating disk that "
     "did nothing since the last look.",
     "quarn sensors", takesJson, runSensors},
    {"power", "[options]", "What the machine draws, by domain.",
     "Averages over --interval seconds. Most energy counters may be read by root only.", "sudo quarn power",
     takesJson | takesInterval, runPower},
    {"battery", "[options]", "The battery: charge, time left, capacity and condition.", "",
     "quarn battery --json | jq .percent", takesJson, runBattery},
    {"gpu", "[options]", "The GPUs and their load, memory and power.",
     "A GPU that sleeps is not woken. Some loads are measured over --interval seconds.", "quarn gpu",
     takesJson | takesInterval, runGpu},
    {"hardware", "[options]", "What the machine and its system are.", "", "quarn hardware", takesJson,
     runHardware},
    {"history", "series | top | app NAME | totals | export FILE | clear",
     "Who used what, up to two years back.",
     "  series       the machine over --range; with --by one kind only\n"
     "  top          the applications that used most (--limit, default 10)\n"
     "  app NAME     one application, by its name or the path in the JSON of `top`\n"
     "  totals       today, the week, the month; with --range also the span before\n"
     "  export FILE  the last half hour of a running Quarn as CSV\n"
     "  clear        deletes the whole history\n\n"
     "The history is recorded while the window, its status items or `quarn recorder` run, as long as the "
     "setting saveMetricsHistory is on.",
     "quarn history top --range week --by memory",
     takesArguments | takesJson | takesSpan | takesMetric | takesLimit | takesConfirmation, runHistory},
    {"recorder", "", "Records the history without a window, until it is stopped.",
     "For servers and for the time between logins; `systemctl --user enable --now quarn-recorder` keeps it "
     "running. Of several programs that could record one does, and another takes over when that one ends.",
     "quarn recorder", takesNothing, runRecorder},
    {"record", "FILE [options]", "Writes measurements into a CSV file, until it is stopped.",
     "Begins FILE anew with a line of column names, and adds a line every --interval seconds until Ctrl-C or "
     "for --seconds. Cells of readings that this machine does not have are empty. While the disk is full, "
     "samples are lost, but recording goes on; the exit status is then 1.",
     "quarn record quarn-recording.csv --seconds 600", takesArguments | takesInterval | takesSeconds,
     runRecord},
    {"settings", "list | get KEY | set KEY VALUE | reset KEY", "Shows and changes settings.",
     "  list [--json]    every setting with its value; * marks what differs from its default\n"
     "  get KEY          one value\n"
     "  set KEY VALUE    stores a value\n"
     "  reset KEY        back to the default; --all for every setting",
     "quarn settings set samplingProfile diagnostic", takesWords, runSettingsCommand},
}};

} // namespace

std::span<const OptionRow> optionRows() { return options; }

std::span<const Command> commands() { return table; }

} // namespace quarn::cli
