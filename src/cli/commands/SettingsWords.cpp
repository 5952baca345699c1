#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/SettingsCommand.h"
#include "ui/settings/Prefs.h"

#include <iostream>
#include <sstream>

namespace quarn::cli {

int runSettingsCommand(const Options& options) {
    std::ostringstream out;
    const int status = runSettings(options.words, Prefs::shared(), out, std::cerr);
    writeOut(out.str());
    return status;
}

} // namespace quarn::cli
