#pragma once

#include "cli/ProcessOrder.h"
#include "cli/view/Canvas.h"
#include "cli/view/Trends.h"

#include <optional>
#include <string>

namespace quarn::cli {

/// What a frame of the live view depends on besides the snapshot.
struct FrameOptions {
    Charset charset = Charset::utf8;
    ProcessOrder order = ProcessOrder::cpu;
    enum class Motion { running, frozen } motion = Motion::running;
    Known known;
    const Trends* trends = nullptr; ///< optional
    std::string host;               ///< name of the machine
    std::optional<int64_t> ownPid;  ///< of this program, whose use is shown at the bottom
};

/// One frame of the live view: what the machine does in a sentence, meters, the busiest processes, a hint.
/// Pure. A small terminal shows fewer rows and columns, down to a single cell.
Canvas frame(const Snapshot& snapshot, Size size, const FrameOptions& options);

} // namespace quarn::cli
