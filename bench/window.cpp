// window PAGE SECONDS: starts the application on PAGE. Prints how long it took from the start of the process
// until the window was painted with readings, and what SECONDS at the usual profile cost then.
#include "core/linux/Files.h"
#include "desktop/Desktop.h"
#include "desktop/MainWindow.h"
#include "desktop/Theme.h"
#include "ui/settings/Prefs.h"

#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sys/resource.h>

namespace {

double cpuSeconds(int who) {
    rusage usage{};
    ::getrusage(who, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

/// Milliseconds since the time in QUARN_STARTED (seconds since the epoch), which bench/run sets before it
/// starts this.
double sinceStart() {
    const char* started = std::getenv("QUARN_STARTED");
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return (static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9 -
            (started ? std::atof(started) : 0)) *
           1e3;
}

} // namespace

int main(int argc, char** argv) {
    using namespace quarn;
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    desktop::Theme::install(application, desktop::Theme::Choice::light);
    desktop::Desktop desktop(Prefs::shared());
    desktop.window().open(argc > 1 ? argv[1] : "overview");
    const int seconds = argc > 2 ? std::atoi(argv[2]) : 20;
    bool shown = false;
    QObject::connect(&desktop, &desktop::Desktop::refreshed, &desktop, [&] {
        if (std::exchange(shown, true)) return;
        desktop.window().repaint();
        std::printf("  shown and filled after %.0f ms\n", sinceStart());
        QTimer::singleShot(3000, &desktop, [&] { // past the first ticks, which fill caches
            const double thread = cpuSeconds(RUSAGE_THREAD), all = cpuSeconds(RUSAGE_SELF);
            QTimer::singleShot(seconds * 1000, &desktop, [=] {
                const double share = 100.0 / seconds;
                std::printf("  main thread %.2f %%, program %.2f %% of a core\n",
                            (cpuSeconds(RUSAGE_THREAD) - thread) * share,
                            (cpuSeconds(RUSAGE_SELF) - all) * share);
                const auto status = sysinfo::platform::readTable("/proc/self/status").value_or("");
                if (const auto at = status.find("VmRSS"); at != std::string::npos)
                    std::printf("  %s\n", status.substr(at, status.find('\n', at) - at).c_str());
                QApplication::quit();
            });
        });
    });
    desktop.start();
    return QApplication::exec();
}
