// screenshots DIR: every page of the window in light and dark, 1200 × 800 and 900 × 600, over a made-up
// machine; status items, popovers and floating panels too.
#include "desktop/Theme.h"
#include "desktop/WindowFixture.h"
#include "desktop/panels/WidgetPanel.h"
#include "desktop/tray/MenuBarModule.h"
#include "desktop/tray/ModulePopover.h"
#include "desktop/tray/StatusIcon.h"
#include "monitor/SensorRetention.h"
#include "support/TempRoot.h"

#include <QBoxLayout>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <cstdio>

namespace quarn::testing {
namespace {

using namespace desktop;

constexpr int seconds = 90, zoom = 4;
constexpr std::array sizes{16, 22, 24, 32};

/// One strip of a panel: every kind in every style at one size.
QImage strip(int size, const QColor& panel, const Reading& reading, const LiveHistory& history) {
    constexpr int styles = 3, gap = 4;
    const int kinds = static_cast<int>(allWidgetKinds.size());
    QImage image((kinds * styles * 2) * (size + gap), size + 2 * gap, QImage::Format_RGB32);
    image.fill(panel);
    QPainter painter(&image);
    int x = gap;
    for (const bool detailed : {false, true})
        for (int style = 0; style < styles; ++style)
            for (const WidgetKind kind : allWidgetKinds) {
                MenuBarModule module(kind);
                module.applyLength(static_cast<MenuBarStyle>(style), 60, history);
                module.applyDetailMode(detailed, history);
                module.show(reading);
                statusIcon(*module.rendered()).paint(&painter, QRect(x, gap, size, size));
                x += size + gap;
            }
    return image.scaled(image.size() * zoom, Qt::KeepAspectRatio, Qt::FastTransformation);
}

QPixmap joined(const std::vector<QPixmap>& pictures, QBoxLayout::Direction direction) {
    QWidget all;
    auto* layout = new QBoxLayout(direction, &all);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const QPixmap& picture : pictures) {
        auto* label = new QLabel(&all);
        label->setPixmap(picture);
        layout->addWidget(label, 0, Qt::AlignTop | Qt::AlignLeft);
    }
    return all.grab();
}

QPixmap pictureOfAll(const std::function<std::unique_ptr<QWidget>(WidgetKind)>& make) {
    std::vector<QPixmap> pictures;
    for (const WidgetKind kind : allWidgetKinds) {
        const auto widget = make(kind);
        widget->show();
        pictures.push_back(widget->grab());
    }
    return joined(pictures, QBoxLayout::LeftToRight);
}

/// Writes into `folder`: status items in every style and size on light and dark panels, enlarged four times,
/// and a popover and a floating panel of each kind in the present theme. False when a file cannot be written.
bool drawTrayPictures(const QString& folder, const QString& theme) {
    const SampleMachine machine;
    const LiveHistory history = machine.history(seconds);
    const Snapshot snapshot = machine.at(seconds);
    const Reading reading{snapshot, SampleMachine::known(), {}, representativeTemperature(snapshot)};
    std::vector<QPixmap> strips;
    for (const QColor& panel : {QColor(0x2B2B2B), QColor(0xEFF0F1), QColor(0x7A7F85)})
        for (const int size : sizes)
            strips.push_back(QPixmap::fromImage(strip(size, panel, reading, history)));
    bool written = joined(strips, QBoxLayout::TopToBottom).save(QString("%1/tray-%2.png").arg(folder, theme));
    const auto updated = [&](auto widget) {
        widget->update(reading, history, 60);
        return widget;
    };
    for (const auto detail : {PopoverDetail::brief, PopoverDetail::full})
        written &= pictureOfAll([&](WidgetKind kind) {
                       return updated(std::make_unique<ModulePopover>(kind, detail));
                   })
                       .save(QString("%1/popovers-%2-%3.png")
                                 .arg(folder, detail == PopoverDetail::full ? "full" : "brief", theme));
    return pictureOfAll([&](WidgetKind kind) {
               return updated(std::make_unique<WidgetPanel>(kind));
           }).save(QString("%1/panels-%2.png").arg(folder, theme)) &&
           written;
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

/// Draws all; says what it cannot write.
int draw(const QString& folder) {
    const SampleMachine machine;
    TempRoot root;
    SampleMachine::capture(root);
    writeSampleHistory(root.path() / "metrics.sqlite", std::chrono::system_clock::now());
    drawIcons(root.path() / "usr/share");
    qputenv("XDG_DATA_DIRS", QByteArray::fromStdString((root.path() / "usr/share").string()));
    for (const auto theme : {Theme::Choice::light, Theme::Choice::dark}) {
        Theme::current().choose(theme);
        const QString colours = theme == Theme::Choice::dark ? "dark" : "light";
        bool written = drawTrayPictures(folder, colours);
        for (const QSize size : {QSize(1200, 800), QSize(900, 600)}) {
            WindowFixture fixture(machine.history(seconds), root.root(), root.path() / "metrics.sqlite");
            fixture.records().metrics().start(true);
            const SensorRetention sensors(fixture.monitor());
            fixture.monitor().sampleAuxNow(); // for the names of the sensors
            for (const auto& page : pageTable()) {
                auto& window = fixture.open(page.id, size);
                for (int tick = seconds - 2; tick < seconds; ++tick) {
                    fixture.show(machine.at(tick));
                    QTest::qWait(120); // what pages ask of other threads arrives
                }
                written &= window.grab().save(
                    QString("%1/%2-%3-%4.png").arg(folder, page.id, colours).arg(size.width()));
            }
        }
        if (!written) {
            std::fprintf(stderr, "screenshots: cannot write all of %s\n", qPrintable(folder));
            return 1;
        }
    }
    std::printf("%s\n", qPrintable(QDir(folder).absolutePath()));
    return 0;
}

} // namespace
} // namespace quarn::testing

int main(int argc, char** argv) {
    const QString folder = argc > 1 ? argv[1] : "screenshots";
    QDir().mkpath(folder);
    return quarn::testing::withApplication(argc, argv, [&] { return quarn::testing::draw(folder); });
}
