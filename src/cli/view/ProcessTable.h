#pragma once

#include "cli/view/Frame.h"
#include "cli/view/Meters.h"

namespace quarn::cli {

/// Draws the head of the process table at `top` and under it as many processes as `rows` allows.
void drawProcesses(Canvas& canvas, Strip top, int rows, const Snapshot& snapshot,
                   const FrameOptions& options);

} // namespace quarn::cli
