// screenshots DIR: every page of the window in light and dark, 1200 × 800 and 900 × 600, over a made-up
// machine; status items, popovers and floating panels too.
#include "desktop/SampleHistory.h"
#include "desktop/Theme.h"
#include "desktop/TrayPictures.h"
#include "desktop/WindowFixture.h"
#include "monitor/SensorRetention.h"

#include "support/TempRoot.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QPainter>
#include <QTimer>
#include <cstdio>

namespace {

/// Lets what pages ask of other threads arrive.
void settle() {
    QEventLoop loop;
    QTimer::singleShot(120, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Pictures for the sample's menus, in their colours.
void drawIcons(const std::filesystem::path& data) {
    const std::pair<const char*, QColor> icons[]{{"firefox-esr", {0xE0, 0x5A, 0x1B}},
                                                 {"thunderbird", {0x1F, 0x6F, 0xC4}},
                                                 {"code", {0x2A, 0x8C, 0xC9}},
                                                 {"org.gnome.Nautilus", {0x4C, 0x8B, 0xF5}},
                                                 {"org.gnome.Terminal", {0x30, 0x36, 0x3D}}};
    const QString folder = QString::fromStdString((data / "pixmaps").string());
    QDir().mkpath(folder);
    for (const auto& [name, color] : icons) {
        QImage image(32, 32, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawRoundedRect(QRectF(1, 1, 30, 30), 7, 7);
        painter.setBrush(QColor(255, 255, 255, 220));
        painter.drawEllipse(QPointF(16, 16), 6, 6);
        painter.end();
        image.save(folder + "/" + name + ".png");
    }
}

} // namespace

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
        writeSampleHistory(root.path() / "metrics.sqlite", std::chrono::system_clock::now());
        drawIcons(root.path() / "usr/share");
        qputenv("XDG_DATA_DIRS", QByteArray::fromStdString((root.path() / "usr/share").string()));
        for (const auto theme : {desktop::Theme::Choice::light, desktop::Theme::Choice::dark}) {
            desktop::Theme::current().choose(theme);
            const QString colours = theme == desktop::Theme::Choice::dark ? "dark" : "light";
            if (!drawTrayPictures(folder, colours)) return 1;
            for (const QSize size : {QSize(1200, 800), QSize(900, 600)}) {
                WindowFixture fixture(machine.history(seconds), root.root(), root.path() / "metrics.sqlite");
                fixture.records().metrics().start(true);
                auto& window = fixture.window();
                const SensorRetention sensors(fixture.monitor());
                fixture.monitor().sampleAuxNow(); // for the names of the sensors
                window.resize(size);
                window.show();
                for (const auto& page : desktop::pageTable()) {
                    window.open(page.id);
                    for (int tick = seconds - 2; tick < seconds; ++tick) {
                        fixture.show(machine.at(tick));
                        settle();
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
