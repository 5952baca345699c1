#pragma once

#include "history/MetricsRecorder.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <optional>

namespace quarn::desktop {

/// What a view wants to know of the past: asks the recorder at once when the question changes, and every
/// minute while the view is shown, or every ten minutes for a month and more. Never waits; only the answer to
/// the last question arrives, and at most one is under way. On the main thread.
class HistoryAsker : public QObject {
    Q_OBJECT
public:
    using Answer = MetricsRead<HistoryAnswer>;

    /// `take` gets the answers. The recorder outlives this.
    HistoryAsker(MetricsRecorder& recorder, std::function<void(const Answer&)> take, QObject* parent);

    /// What is to be known from now on; nullopt for nothing.
    void want(std::optional<HistoryQuestion> question);
    const std::optional<HistoryQuestion>& wanted() const { return wanted_; }
    /// Asks the same again, when something else changed.
    void askAgain();
    /// Whether anybody looks. Nothing is asked while nobody does.
    void setShown(bool shown);

private:
    void begin();
    void land(const Answer& answer);

    MetricsRecorder& recorder_;
    std::function<void(const Answer&)> take_;
    std::optional<HistoryQuestion> wanted_;
    QTimer timer_;
    bool isShown_ = false;
    bool isBusy_ = false;
    bool isOvertaken_ = false; ///< what is under way is not what is wanted now
};

} // namespace quarn::desktop
