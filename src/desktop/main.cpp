#include "HelperKit/SignalPipe.h"
#include "desktop/Desktop.h"
#include "desktop/MainWindow.h"
#include "desktop/SingleInstance.h"
#include "desktop/Theme.h"
#include "ui/settings/Prefs.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QSocketNotifier>
#include <csignal>
#include <cstdlib>
#include <unistd.h>

int main(int argc, char** argv) {
    using namespace quarn;
    using namespace quarn::desktop;
    QApplication application(argc, argv);
    QApplication::setApplicationName("quarn");
    QApplication::setApplicationDisplayName("Quarn");
    QApplication::setApplicationVersion(QUARN_VERSION);
    QApplication::setDesktopFileName("quarn");
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.setApplicationDescription("Process and hardware monitor");
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption root("root", "Read a captured machine in <folder>.", "folder", "/");
    const QCommandLineOption page("page", "Open this page first.", "page");
    const QCommandLineOption theme("theme", "Colours, whatever the settings say: system, light or dark.",
                                   "theme");
    parser.addOptions({root, page, theme});
    parser.process(application);

    const QString name = QString("quarn-%1-%2").arg(::getuid()).arg(qEnvironmentVariable("DISPLAY", "0"));
    SingleInstance instance(name);
    if (!instance.isFirst()) return 0;

    const auto colours = PrefStorable<AppTheme>::fromStored(parser.value(theme).toStdString());
    Theme::install(application, colours.value_or(Prefs::shared().appTheme.get()));
    Desktop desktop(Prefs::shared(), sysinfo::SystemRoot(parser.value(root).toStdString()));
    // Nothing is lost with a session that ends by a signal.
    SignalPipe signals({SIGINT, SIGTERM, SIGHUP});
    const QSocketNotifier ended(signals.readable(), QSocketNotifier::Read);
    QObject::connect(&ended, &QSocketNotifier::activated, &application,
                     [&] { signals.drain([](int) { QApplication::quit(); }); });
    QObject::connect(&instance, &SingleInstance::raised, &desktop, &Desktop::showWindow);
    if (!colours) desktop.followThemeSetting();
    desktop.start();
    if (parser.isSet(page)) desktop.window().open(parser.value(page));
    // When the display goes away, as at the end of a session, Qt exits on the spot.
    static Desktop* running = nullptr;
    running = &desktop;
    std::atexit([] {
        if (running) running->save();
    });
    const int status = QApplication::exec();
    running = nullptr;
    return status;
}
