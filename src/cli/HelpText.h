#pragma once

#include "cli/Command.h"

#include <string>

namespace quarn::cli {

/// What `--help` prints for a command, or for the whole program when it is null. No line is wider than 80.
std::string helpText(const Command* command);

} // namespace quarn::cli
