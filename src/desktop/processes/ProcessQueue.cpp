#include "desktop/processes/ProcessQueue.h"

#include "HelperKit/SerialQueue.h"

namespace quarn::desktop {

Executor& processQueue() {
    static auto* queue = new SerialQueue("com.kelmora.quarn.process"); // its end would wait for its work
    return *queue;
}

} // namespace quarn::desktop
