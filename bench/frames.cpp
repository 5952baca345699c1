// frames: what one refresh of each page costs the main thread, its drawing included, over a made-up machine
// of 2,000 processes and 16 cores whose every reading changes from one to the next. What other threads make
// of a snapshot (the list of applications) is waited for, and its drawing counts.
#include "desktop/SampleMachine.h"
#include "desktop/WindowFixture.h"

#include "support/TempRoot.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

double threadMs() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

/// Handles events until those of other threads have come; waiting costs nothing.
void settle() {
    QEventLoop loop;
    QTimer::singleShot(30, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int main(int argc, char** argv) {
    using namespace quarn;
    using namespace quarn::testing;
    return withApplication(argc, argv, [] {
        constexpr int first = 90, frames = 40;
        const SampleMachine machine{.cores = 16, .processes = 2000};
        std::vector<Snapshot> snapshots;
        for (int tick = first; tick < first + frames; ++tick) snapshots.push_back(machine.at(tick));
        TempRoot root;
        SampleMachine::capture(root);
        WindowFixture fixture(machine.history(first), root.root());
        auto& window = fixture.window();
        window.resize(1200, 800);
        window.show();
        for (const auto& page : desktop::pageTable()) {
            window.open(page.id);
            fixture.show(snapshots.front());
            settle();
            std::vector<double> costs;
            for (const Snapshot& snapshot : snapshots) {
                const double before = threadMs();
                fixture.show(snapshot);
                settle(); // lays out and draws what changed
                costs.push_back(threadMs() - before);
            }
            std::sort(costs.begin(), costs.end());
            std::printf("  %-12s %5.2f ms, at most %5.2f ms\n", page.id, costs[costs.size() / 2],
                        costs.back());
        }
        return 0;
    });
}
