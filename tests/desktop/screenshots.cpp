// screenshots DIR: every page of the window in light and dark, 1200 × 800 and 900 × 600, over a made-up
// machine; status items, popovers and floating panels too.
#include "desktop/Theme.h"
#include "desktop/TrayPictures.h"
#include "desktop/WindowFixture.h"
#include "monitor/SensorRetention.h"

#include "support/TempRoot.h"

#include <QApplication>
#include <QDir>
#include <cstdio>

int main(int argc, char** argv) {
    using namespace quarn;
    using namespace quarn::testing;
    const QString folder = argc > 1 ? argv[1] : "screenshots";
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "screenshots: cannot make the folder %s\n", qPrintable(folder));
        return 1;
    }
    return withApplication(argc, argv, [&] {
        constexpr int seconds = 90;
        const SampleMachine machine;
        TempRoot root;
        SampleMachine::capture(root);
        for (const auto theme : {desktop::Theme::Choice::light, desktop::Theme::Choice::dark}) {
            desktop::Theme::current().choose(theme);
            const QString colours = theme == desktop::Theme::Choice::dark ? "dark" : "light";
            if (!drawTrayPictures(folder, colours)) return 1;
            for (const QSize size : {QSize(1200, 800), QSize(900, 600)}) {
                WindowFixture fixture(machine.history(seconds), root.root());
                auto& window = fixture.window();
                const SensorRetention sensors(fixture.monitor());
                fixture.monitor().sampleAuxNow(); // for the names of the sensors
                window.resize(size);
                window.show();
                for (const auto& page : desktop::pageTable()) {
                    window.open(page.id);
                    for (int tick = seconds - 2; tick < seconds; ++tick) {
                        window.refresh(machine.at(tick), SampleMachine::known());
                        for (int i = 0; i < 20; ++i) QApplication::processEvents(QEventLoop::AllEvents, 10);
                    }
                    const QString name =
                        QString("%1/%2-%3-%4.png")
                            .arg(folder, page.id, theme == desktop::Theme::Choice::dark ? "dark" : "light")
                            .arg(size.width());
                    if (!window.grab().save(name)) {
                        std::fprintf(stderr, "screenshots: cannot write %s\n", qPrintable(name));
                        return 1;
                    }
                }
            }
        }
        std::printf("%s\n", qPrintable(QDir(folder).absolutePath()));
        return 0;
    });
}
