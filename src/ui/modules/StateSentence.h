#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <string>

namespace quarn {

/// What the machine does, in plain words: "1.9 of 8 cores busy; firefox uses most". The processes of one name
/// count together. Empty while it is not known.
std::string stateSentence(const Snapshot& snapshot, const Known& known);

} // namespace quarn
