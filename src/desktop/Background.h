#pragma once

#include "HelperKit/Queue.h"

#include <QCoreApplication>
#include <QPointer>
#include <utility>

namespace quarn::desktop {

/// Runs `work` on `queue`, then `then` with its result on the main thread, unless `owner` is gone by then.
template <class Work, class Then>
void inBackground(Executor& queue, QObject* owner, Work work, Then then) {
    queue.async([guard = QPointer<QObject>(owner), work = std::move(work), then = std::move(then)]() mutable {
        auto result = work();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [guard = std::move(guard), then = std::move(then), result = std::move(result)]() mutable {
                if (guard) then(std::move(result));
            },
            Qt::QueuedConnection);
    });
}

} // namespace quarn::desktop
