#pragma once

#include <stdexcept>
#include <string_view>

namespace quarn::cli {

/// Standard output has no reader any more: the command ends, quietly.
struct OutputClosed : std::exception {};

/// Writes all of `text` to standard output, unbuffered; waits while its reader is slow. Throws OutputClosed
/// when there is no reader (SIGPIPE must be ignored), std::system_error for other failures.
void writeOut(std::string_view text);

/// Writes "quarn: <message>" as one line to standard error; control characters of `message` are replaced.
void complain(std::string_view message);

} // namespace quarn::cli
