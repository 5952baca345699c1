#include "HelperKit/ThreadTuning.h"

#include <algorithm>
#include <pthread.h>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace quarn {

namespace {

constexpr size_t nameLength = 15;
constexpr int lowestNice = 19;

int niceOffset(QualityOfService qos) {
    switch (qos) {
    case QualityOfService::userInitiated: return 0;
    case QualityOfService::utility: return 5;
    case QualityOfService::background: return 10;
    }
    return 0;
}

/// Whether the thread may raise itself, found out by trying: limits, capabilities and containers all have a
/// say.
bool mayRaise(int nice) {
    return setpriority(PRIO_PROCESS, 0, nice - 1) == 0 && setpriority(PRIO_PROCESS, 0, nice) == 0;
}

} // namespace

void nameThread(std::string_view label) {
    const std::string name(label.substr(label.size() - std::min(label.size(), nameLength)));
    pthread_setname_np(pthread_self(), name.c_str());
}

void setThreadUrgency(QualityOfService qos, Lowering lowering) {
    // For Linux 0 is the calling thread, and the process id is the main thread, which is never lowered.
    const int programs = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    const int current = getpriority(PRIO_PROCESS, 0);
    const int target = std::min(programs + niceOffset(qos), lowestNice);
    if (target == current) return;
    if (target > current && lowering == Lowering::onlyIfReversible && !mayRaise(current)) return;
    setpriority(PRIO_PROCESS, 0, target);
}

std::chrono::nanoseconds threadTimerSlack() {
    const int slack = prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0);
    return std::chrono::nanoseconds(std::max(slack, 0));
}

void setThreadTimerSlack(std::chrono::nanoseconds slack) {
    prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(std::max<int64_t>(slack.count(), 1)), 0, 0, 0);
}

} // namespace quarn
