#pragma once

namespace quarn::cli {

/// The exit statuses of the program.
enum Status { success = 0, failure = 1, wrongUsage = 2 };

/// Reads the arguments, runs what they ask for and answers the exit status. Never throws; an error is one
/// line on standard error.
int runCommandLine(int argc, const char* const* argv);

} // namespace quarn::cli
