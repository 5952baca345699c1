#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <string>

namespace quarn {

struct ResourceAppList;

/// What the machine does, in plain words: "1.9 of 8 cores busy; Firefox uses most". Without a list of
/// applications the processes of one name count together. Empty while it is not known.
std::string stateSentence(const Snapshot& snapshot, const Known& known,
                          const ResourceAppList* apps = nullptr);

} // namespace quarn
