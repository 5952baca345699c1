#pragma once

#include "HelperKit/Queue.h"

#include <QCoreApplication>
#include <QObject>

namespace quarn::desktop {

/// The application's event loop as an executor; belongs to the thread that made it. Work posted after its end
/// is dropped.
class QtExecutor final : public Executor {
public:
    void async(std::function<void()> work) override {
        QMetaObject::invokeMethod(&target_, std::move(work), Qt::QueuedConnection);
    }

private:
    QObject target_;
};

} // namespace quarn::desktop
