#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/SensorsCommand.h"
#include "core/SMC.h"

namespace quarn::cli {

int runSensors(const Options& options) {
    sysinfo::SMC smc(options.root);
    const auto sections = readSensorReport(smc);
    if (options.form == Options::Form::json) {
        JsonWriter json;
        writeSensors(json, sections);
        json.newline();
        writeOut(json.text());
    } else if (sections.empty()) {
        writeOut("This machine offers no sensors; virtual machines usually do not.\n");
    } else {
        writeOut(sensorText(sections, charsetOfEnvironment()));
    }
    return 0;
}

} // namespace quarn::cli
