#pragma once

#include <string>
#include <string_view>

namespace quarn {

/// Words a text for the platform and language at hand; the one place where texts are reworded and translated.
/// Texts that were written for another desktop ("Your Mac is running smoothly") are reworded for this one.
/// English is the only language so far: other texts come back as they are. Code compares and stores the
/// original texts.
std::string worded(std::string_view text);

} // namespace quarn
