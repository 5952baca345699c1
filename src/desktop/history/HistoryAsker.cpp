#include "desktop/history/HistoryAsker.h"

#include <QCoreApplication>
#include <QPointer>
#include <utility>

namespace quarn::desktop {

namespace {

/// The recorder writes every minute; months hardly change by that, and cost most to read.
std::chrono::minutes askEvery(HistorySpan span) {
    return std::chrono::minutes(span >= HistorySpan::month ? 10 : 1);
}

} // namespace

HistoryAsker::HistoryAsker(MetricsRecorder& recorder, std::function<void(const Answer&)> take,
                           QObject* parent)
    : QObject(parent), recorder_(recorder), take_(std::move(take)) {
    connect(&timer_, &QTimer::timeout, this, &HistoryAsker::askAgain);
}

void HistoryAsker::want(std::optional<HistoryQuestion> question) {
    if (question == wanted_) return;
    wanted_ = std::move(question);
    begin();
}

void HistoryAsker::setShown(bool shown) {
    if (std::exchange(isShown_, shown) != shown) begin();
}

void HistoryAsker::begin() {
    timer_.stop();
    if (!isShown_ || !wanted_) return;
    timer_.start(askEvery(wanted_->span));
    askAgain();
}

void HistoryAsker::askAgain() {
    isOvertaken_ = isBusy_;
    if (isBusy_ || !isShown_ || !wanted_) return;
    isBusy_ = true;
    recorder_.ask(*wanted_, [self = QPointer<HistoryAsker>(this)](Answer answer) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, answer = std::move(answer)] {
                if (self) self->land(answer);
            },
            Qt::QueuedConnection);
    });
}

void HistoryAsker::land(const Answer& answer) {
    isBusy_ = false;
    if (std::exchange(isOvertaken_, false)) return askAgain();
    if (isShown_ && wanted_) take_(answer);
}

} // namespace quarn::desktop
