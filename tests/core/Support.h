#pragma once

#include "support/Joined.h"
#include "support/TempRoot.h"

namespace sysinfo::platform {}

/// What the tests of the core share; who uses this namespace sees the core's names as well.
namespace quarn::testing {

using namespace sysinfo;
using namespace sysinfo::platform;

} // namespace quarn::testing
