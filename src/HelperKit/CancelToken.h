#pragma once

#include "HelperKit/Locked.h"

namespace quarn {

/// The flag by which one thread asks a long job on another to stop. The job polls between units of work.
class CancelToken {
public:
    void cancel() { cancelled_.set(true); }
    bool isCancelled() const { return cancelled_.get(); }

private:
    Locked<bool> cancelled_{false};
};

} // namespace quarn
