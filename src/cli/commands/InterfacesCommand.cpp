// The network interfaces of the machine.
#include "cli/Command.h"
#include "cli/Engine.h"
#include "cli/Json.h"
#include "cli/Output.h"
#include "cli/TextTable.h"
#include "ui/modules/Format.h"

namespace quarn::cli {
namespace {} // namespace

int runInterfaces(const Options& options) {
    Engine engine(options.root);
    const Snapshot& snapshot = engine.sampleOver(options.interval);
    const Known known = engine.known();
    if (options.form == Options::Form::json) {
        JsonWriter json;
        writeJson(json, snapshot.interfaces, known);
        json.newline();
        writeOut(json.text());
        return 0;
    }
    if (snapshot.interfaces.empty()) {
        writeOut("No network interfaces but the loopback were found.\n");
        return 0;
    }
    const auto rate = [&](double value) {
        return known.rates ? format::rate(value) : std::string(format::unknown);
    };
    TextTable table({{"Interface"},
                     {"State"},
                     {"In", Align::right},
                     {"Out", Align::right},
                     {"Received", Align::right},
                     {"Sent", Align::right},
                     {"Media"},
                     {"MAC"},
                     {"Addresses"}},
                    charsetOfEnvironment());
    for (const NetInterface& link : snapshot.interfaces) {
        table.add({link.name, link.up ? "up" : "down", rate(link.rxRate), rate(link.txRate),
                   format::diskSize(link.rxBytes), format::diskSize(link.txBytes),
                   format::orUnknown(link.media), format::orUnknown(link.mac),
                   format::orUnknown(link.addrs)});
    }
    writeOut(table.text());
    return 0;
}

} // namespace quarn::cli
