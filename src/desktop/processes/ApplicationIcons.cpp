#include "desktop/processes/ApplicationIcons.h"

#include "core/DesktopEntry.h"
#include "desktop/Background.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QPixmap>
#include <QStandardPaths>
#include <utility>

namespace quarn::desktop {

namespace {

constexpr int pixels = 32; ///< enough for 16 on a screen of double density
constexpr qint64 largestFile = 64 * 1024;

using Images = std::unordered_map<std::string, QImage>;

/// Where the picture of that name lies; empty when it is in none of the usual places.
QString pictureOf(const QString& icon, const QStringList& dataFolders) {
    if (QDir::isAbsolutePath(icon)) return icon;
    for (const QString& folder : dataFolders)
        for (const char* place : {"icons/hicolor/32x32/apps/%1.png", "icons/hicolor/48x48/apps/%1.png",
                                  "icons/hicolor/scalable/apps/%1.svg", "icons/hicolor/64x64/apps/%1.png",
                                  "icons/hicolor/128x128/apps/%1.png", "icons/hicolor/16x16/apps/%1.png",
                                  "pixmaps/%1.png", "pixmaps/%1.svg", "pixmaps/%1.xpm"})
            if (QString file = folder + "/" + QString(place).arg(icon); QFile::exists(file)) return file;
    return {};
}

Images readImages(const CancelToken& ended) {
    Images images;
    const QStringList dataFolders = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    for (const QString& folder : dataFolders) {
        const QDir menus(folder + "/applications");
        for (const QString& name : menus.entryList({"*.desktop"}, QDir::Files)) {
            if (ended.isCancelled()) return images;
            QFile file(menus.filePath(name));
            if (!file.open(QIODevice::ReadOnly)) continue;
            const auto entry = sysinfo::parseDesktopEntry(file.read(largestFile).toStdString());
            if (entry.icon.empty()) continue;
            const QString picture = pictureOf(QString::fromStdString(entry.icon), dataFolders);
            if (picture.isEmpty()) continue;
            QImage image = QImageReader(picture).read();
            if (image.isNull()) continue;
            image = image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            images.emplace(file.fileName().toStdString(), image);
            if (const auto program = entry.program(); !program.empty() && !sysinfo::isLauncher(program))
                images.emplace(program, image);
        }
    }
    return images;
}

} // namespace

ApplicationIcons::ApplicationIcons() {
    inBackground(
        queue_, this, [this] { return readImages(ended_); },
        [this](const Images& images) {
            for (const auto& [program, image] : images)
                icons_.emplace(program, QIcon(QPixmap::fromImage(image)));
            if (!icons_.empty()) Q_EMIT arrived();
        });
}

ApplicationIcons::~ApplicationIcons() { ended_.cancel(); }

ApplicationIcons& ApplicationIcons::shared() {
    static ApplicationIcons* icons = nullptr;
    if (!icons) {
        icons = new ApplicationIcons;
        // Not as a child of the application, which drops its children when it can paint no more.
        qAddPostRoutine([] { delete std::exchange(icons, nullptr); });
    }
    return *icons;
}

const QIcon* ApplicationIcons::find(std::string_view path) const {
    if (icons_.empty()) return nullptr;
    auto found = icons_.find(std::string(path));
    if (found == icons_.end()) found = icons_.find(std::string(path.substr(path.rfind('/') + 1)));
    return found == icons_.end() ? nullptr : &found->second;
}

} // namespace quarn::desktop
