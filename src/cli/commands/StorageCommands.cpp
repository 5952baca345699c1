#include "cli/Command.h"
#include "cli/Engine.h"
#include "cli/Json.h"
#include "cli/Output.h"
#include "cli/TextTable.h"
#include "ui/modules/Format.h"

#include <fmt/format.h>

namespace quarn::cli {
namespace {

template <class List>
void writeList(const List& list, const Known& known) {
    JsonWriter json;
    writeJson(json, list, known);
    json.newline();
    writeOut(json.text());
}

std::string usedShare(const Volume& volume) {
    if (volume.total == 0) return std::string(format::unknown);
    return format::percent(100 * static_cast<double>(volume.used) / static_cast<double>(volume.total));
}

} // namespace

int runDisks(const Options& options) {
    Engine engine(options.root);
    const Snapshot& snapshot = engine.sampleOver(options.interval);
    const Known known = engine.known();
    if (options.form == Options::Form::json) {
        writeList(snapshot.disks, known);
        return 0;
    }
    if (snapshot.disks.empty()) {
        writeOut("No physical disks were found.\n");
        return 0;
    }
    const auto rate = [&](double value) {
        return known.rates ? format::rate(value) : std::string(format::unknown);
    };
    TextTable table({{"Disk"},
                     {"Name"},
                     {"Kind"},
                     {"Medium"},
                     {"Size", Align::right},
                     {"Read", Align::right},
                     {"Write", Align::right},
                     {"Interface"},
                     {"Link"}},
                    charsetOfEnvironment());
    for (const DiskDevice& disk : snapshot.disks) {
        table.add({disk.bsd, format::orUnknown(disk.name), std::string(diskKind(disk)),
                   format::orUnknown(disk.medium),
                   disk.size > 0 ? format::diskSize(disk.size) : std::string(format::unknown),
                   rate(disk.readRate), rate(disk.writeRate), format::orUnknown(disk.interconnect),
                   format::orUnknown(disk.link)});
    }
    writeOut(table.text());
    return 0;
}

int runVolumes(const Options& options) {
    Engine engine(options.root);
    const std::vector<Volume> volumes = engine.monitor().volumes();
    if (options.form == Options::Form::json) {
        writeList(volumes, {});
        return 0;
    }
    if (volumes.empty()) {
        writeOut("No volumes were found.\n");
        return 0;
    }
    TextTable table({{"Volume"},
                     {"Size", Align::right},
                     {"Used", Align::right},
                     {"Free", Align::right},
                     {"Used %", Align::right},
                     {"File system"},
                     {"Device"}},
                    charsetOfEnvironment());
    const auto size = [](const Volume& volume, uint64_t bytes) {
        return volume.total > 0 ? format::memory(bytes) : std::string(format::unknown);
    };
    for (const Volume& volume : volumes) {
        table.add({volume.mount, size(volume, volume.total), size(volume, volume.used),
                   size(volume, volume.free), usedShare(volume), format::orUnknown(volume.fs),
                   format::orUnknown(volume.device)});
    }
    writeOut(table.text());
    return 0;
}

} // namespace quarn::cli
