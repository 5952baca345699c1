#include "desktop/TrayPictures.h"

#include "desktop/SampleMachine.h"
#include "desktop/Theme.h"
#include "desktop/panels/WidgetPanel.h"
#include "desktop/tray/MenuBarModule.h"
#include "desktop/tray/ModulePopover.h"
#include "desktop/tray/StatusIcon.h"
#include "ui/modules/LiveHistory.h"

#include <QImage>
#include <QPainter>
#include <QWidget>

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

QImage stacked(const std::vector<QImage>& images) {
    QSize size;
    for (const QImage& image : images)
        size = QSize(std::max(size.width(), image.width()), size.height() + image.height());
    QImage result(size, QImage::Format_RGB32);
    result.fill(Qt::gray);
    QPainter painter(&result);
    int y = 0;
    for (const QImage& image : images) {
        painter.drawImage(0, y, image);
        y += image.height();
    }
    return result;
}

template <class Make>
QImage sideBySide(Make make) {
    std::vector<QPixmap> pictures;
    QSize size;
    for (const WidgetKind kind : allWidgetKinds) {
        const std::unique_ptr<QWidget> widget = make(kind);
        widget->show();
        pictures.push_back(widget->grab());
        size = QSize(size.width() + pictures.back().width() + 8,
                     std::max(size.height(), pictures.back().height()));
    }
    QImage image(size, QImage::Format_RGB32);
    image.fill(Theme::current().background());
    QPainter painter(&image);
    int x = 0;
    for (const QPixmap& picture : pictures) {
        painter.drawPixmap(x, 0, picture);
        x += picture.width() + 8;
    }
    return image;
}

} // namespace

bool drawTrayPictures(const QString& folder, const QString& theme) {
    const SampleMachine machine;
    const LiveHistory history = machine.history(seconds);
    const Snapshot snapshot = machine.at(seconds);
    const Reading reading{snapshot, SampleMachine::known(), {}, representativeTemperature(snapshot)};
    std::vector<QImage> strips;
    for (const QColor& panel : {QColor(0x2B2B2B), QColor(0xEFF0F1), QColor(0x7A7F85)})
        for (const int size : sizes) strips.push_back(strip(size, panel, reading, history));
    bool written = stacked(strips).save(QString("%1/tray-%2.png").arg(folder, theme));
    for (const auto detail : {PopoverDetail::brief, PopoverDetail::full}) {
        const auto popover = [&](WidgetKind kind) {
            auto widget = std::make_unique<ModulePopover>(kind, detail);
            widget->update(reading, history, 60);
            return widget;
        };
        written &= sideBySide(popover).save(
            QString("%1/popovers-%2-%3.png")
                .arg(folder, detail == PopoverDetail::full ? "full" : "brief", theme));
    }
    const auto panel = [&](WidgetKind kind) {
        auto widget = std::make_unique<WidgetPanel>(kind);
        widget->update(reading, history, 60);
        return widget;
    };
    return sideBySide(panel).save(QString("%1/panels-%2.png").arg(folder, theme)) && written;
}

} // namespace quarn::testing
