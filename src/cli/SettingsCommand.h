#pragma once

#include <iosfwd>
#include <span>
#include <string>

namespace quarn {

class Prefs;

/// `quarn settings`: shows and changes the user's settings. `arguments` are the words behind "settings":
///
///     list [--json]    every setting with its value; "*" marks those that differ from their default
///     get KEY          one value, as `set` takes it
///     set KEY VALUE    stores a value; a list is comma-separated
///     reset KEY        forgets what is stored, so that the default applies
///     reset --all      the same for every setting; other content of the file stays
///
/// Answers the exit status: 0; 1 when the settings could not be stored; 2 for wrong usage, an unknown key or
/// a value that the setting does not take. Each error is one line on `err`, beginning "quarn settings: ".
/// Words that begin with "-" may be values (numbers below 0): pass them on as they are.
int runSettings(std::span<const std::string> arguments, Prefs& prefs, std::ostream& out, std::ostream& err);

} // namespace quarn
