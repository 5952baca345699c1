// tick COUNT INTERVAL: the CPU time of COUNT ticks of the whole engine, INTERVAL seconds apart, from the
// timer to the published snapshot. Prints milliseconds per tick.
#include "HelperKit/RunLoop.h"
#include "HelperKit/SerialQueue.h"
#include "monitor/Monitor.h"
#include "ui/settings/Prefs.h"

#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>

namespace {

double cpuMs() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

} // namespace

int main(int count, char** arguments) {
    const int ticks = count > 1 ? std::atoi(arguments[1]) : 10;
    quarn::RunLoop main;
    quarn::SerialQueue queue("com.kelmora.quarn.sampler"), aux("com.kelmora.quarn.aux");
    quarn::NoHelper helper;
    quarn::Monitor monitor(
        {.queue = queue, .aux = aux, .main = main, .prefs = quarn::Prefs::shared(), .helper = helper});
    monitor.setTick(count > 2 ? std::atof(arguments[2]) : 1.0);
    int seen = 0;
    double start = 0;
    monitor.observe([&](const quarn::Snapshot& snapshot) {
        if (seen == 1) start = cpuMs(); // the first two ticks fill the caches
        if (seen++ < ticks + 1) return;
        std::printf("%zu processes, %.2f ms a tick\n", snapshot.processes.size(), (cpuMs() - start) / ticks);
        main.stop();
    });
    monitor.start();
    main.run();
}
