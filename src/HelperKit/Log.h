#pragma once

#include <string_view>

namespace quarn {

/// Writes "Quarn: <message>" and a line feed to standard error. A message that repeats is written once; its
/// repetitions are counted, and the count is written when the tenth, hundredth, … comes. Any thread.
void log(std::string_view message);

} // namespace quarn
