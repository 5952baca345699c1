#include "HelperKit/WireRecords.h"

namespace quarn {

std::optional<std::string> CommandResult::failureDescription() const {
    if (launchError) return launchError;
    if (timedOut) return "Command timed out";
    if (outputTruncated) return "Output limit exceeded";
    if (exitCode != 0) return "Exit code: " + std::to_string(exitCode);
    return std::nullopt;
}

} // namespace quarn
