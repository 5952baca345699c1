#pragma once

#include "HelperKit/Queue.h"

namespace quarn::desktop {

/// Where single processes are asked and commanded. What the kernel tells of a process can wait for that
/// process, for ever in the worst case, so this queue is never waited for, not even at the end of the
/// program.
Executor& processQueue();

} // namespace quarn::desktop
